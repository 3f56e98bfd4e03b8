// Narrow texts, whose bytes need not be UTF-8, through documents.
#include "KARMPDocuments.h"

#include "KARMPScrewConstraint.h"
#include "KARMPString.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace karmp::documents;

namespace {

std::string AllBytes()
{
    std::string all;
    for (int value = 0; value < 256; ++value)
        all.push_back(static_cast<char>(value));
    return all;
}

class NarrowText : public KARMPTestFixture
{
protected:
    NarrowText() : m_world(KARMPWorld::create(QOBBasicWorld::create(L"World"))) {}

    LoadResult SavedAndLoaded()
    {
        std::string document;
        const Diagnostics saved = SaveText(m_world, document);
        for (const Diagnostic& item : saved.items)
            ADD_FAILURE() << Format(item);
        LoadResult loaded = LoadText(document);
        EXPECT_FALSE(loaded.diagnostics.HasErrors()) << document;
        return loaded;
    }

    QOBSharedHandle<KARMPWorld> m_world;
};

} // namespace

TEST_F(NarrowText, ComesBackByteForByteThroughADocument)
{
    const std::vector<std::string> texts{
        AllBytes(),
        "Reibung gro\xDF", // Latin 1
        "\xE2\x82",        // cut off
        "\xC0\x80 \xE0\x80\xAF",
        "\xED\xA0\x80 \xED\xB2\x80 \xED\xB3\x83\xA4",
        "gro\xC3\x9F \xF0\x9F\x98\x80",
        "\\x{DC80} \\x{5C}",
        std::string(" \0 ", 3),
    };
    for (const std::string& text : texts) {
        m_world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
        const auto screw = KARMPScrewConstraint::create(L"screw");
        screw->EnableFriction();
        screw->SetFrictionModel(KARString(std::string_view(text)));
        screw->SetMotionState(KARString(std::string_view(text)));
        screw->SetID(KARString(std::string_view(text)));
        m_world->Add<KARMPConstraint>(screw);
        const auto string = KARMPString::create(L"string");
        string->SetValue(KARUnicodeString(std::string_view(text)));
        m_world->Add<KARMPValue>(string);
        const LoadResult loaded = SavedAndLoaded();
        ASSERT_TRUE(loaded.world);
        QOBSharedHandle<KARMPConstraint> constraint;
        ASSERT_EQ(loaded.world->Get(0, constraint), KARSuccess);
        const auto* readScrew = dynamic_cast<const KARMPScrewConstraint*>(constraint.get());
        ASSERT_NE(readScrew, nullptr);
        EXPECT_EQ(readScrew->GetFrictionModel().Text(), text);
        EXPECT_EQ(readScrew->GetMotionState().Text(), text);
        EXPECT_EQ(readScrew->GetID().Text(), text);
        QOBSharedHandle<KARMPValue> value;
        ASSERT_EQ(loaded.world->Get(0, value), KARSuccess);
        const auto* readString = dynamic_cast<const KARMPString*>(value.get());
        ASSERT_NE(readString, nullptr);
        KARUnicodeString read;
        readString->GetValue(read);
        EXPECT_EQ(read.Text(), text);
    }
}

TEST_F(NarrowText, OfADocumentThatHoldsUnitsOfBytesIsWrittenAsItWasRead)
{
    // The first two stand for bytes that would be one character, the last for none at all.
    const std::string written = "\\x{DCC3}\\x{DCA4} \\x{DC80} \\x{D800} \\x{DFFF}";
    const auto string = KARMPString::create(L"string");
    string->SetValue("PLACE");
    m_world->Add<KARMPValue>(string);
    std::string document;
    EXPECT_FALSE(SaveText(m_world, document).HasErrors());
    const std::size_t offset = document.find("PLACE");
    ASSERT_NE(offset, std::string::npos);
    document.replace(offset, 5, written);
    const LoadResult loaded = LoadText(document);
    ASSERT_TRUE(loaded.world);
    std::string again;
    EXPECT_FALSE(SaveText(loaded.world, again).HasErrors());
    EXPECT_NE(again.find(">" + written + "<"), std::string::npos) << again;
}
