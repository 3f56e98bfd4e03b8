// The scan of the form against the check that tells what is amiss: the one is content just where
// the other finds nothing.
#include "KARMPFormScan.h"

#include "ChangedDocuments.h"
#include "KARMPDocumentChecker.h"
#include "KARMPDocumentSource.h"
#include "PlantedTesting.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using namespace karmp::documents;

namespace {

// The messages of a check that is told whether the entities have their form.
std::string Messages(const Document& document, CheckLevel level, bool hasForm)
{
    Diagnostics found;
    karmp::documents::Messages messages(found, {}, Limits().diagnostics);
    DocumentChecker(*document.Root(), messages, level, hasForm).Run();
    std::string text;
    for (const Diagnostic& item : found.items)
        text += Format(item) + '\n';
    return text;
}

bool IsContent(const std::string& text, CheckLevel level)
{
    const Document document = Document::ReadText(text);
    return FormScan(DocumentSource::Of(*document.Root()), level).Run();
}

// What is wrong with the answers of the scan to a document; false for one without a tree.
struct Comparison
{
    explicit Comparison(const std::string& text)
    {
        const Document document = Document::ReadText(text);
        isRead = document.Root() != nullptr;
        for (const CheckLevel level : {CheckLevel::Form, CheckLevel::Mechanism}) {
            if (!isRead)
                continue;
            const std::string whole = Messages(Document::ReadText(text), level, false);
            const bool isContent = IsContent(text, level);
            if (isContent) {
                EXPECT_EQ(Messages(Document::ReadText(text), level, true), whole);
            } else if (level == CheckLevel::Form) {
                isAmiss = true;
                isFalseAlarm = whole.empty();
            }
        }
    }

    bool isRead = false;
    bool isAmiss = false;
    bool isFalseAlarm = false;
};

TEST(FormScan, IsContentWithWhatTheCheckFindsNothingIn)
{
    for (const std::string& text : ExampleTexts()) {
        const Comparison comparison(text);
        EXPECT_TRUE(comparison.isRead);
        EXPECT_FALSE(comparison.isFalseAlarm) << text.substr(0, 500);
    }
}

TEST(FormScan, IsNotContentWithFaultsThatReferencesToCharactersHide)
{
    const std::pair<std::string, std::string> changes[] = {
        {"<HasMaxValue>false<", "<HasMaxValue>tr&#117;e<"},
        {R"(<Joint id="Guide")", R"(<Joint id="Gu&#120;de")"},
    };
    for (const auto& [sound, mistaken] : changes) {
        std::string text = ReadDocument("slider-crank");
        const std::size_t at = text.find(sound);
        ASSERT_NE(at, text.npos) << sound;
        text.replace(at, sound.size(), mistaken);
        EXPECT_FALSE(IsContent(text, CheckLevel::Form)) << mistaken;
        EXPECT_NE(Messages(Document::ReadText(text), CheckLevel::Form, false), "") << mistaken;
    }
}

TEST(FormScan, AgreesWithTheCheckOnChangedDocuments)
{
    constexpr int times = 60;
    Changes changes;
    int read = 0;
    int amiss = 0;
    int falseAlarms = 0;
    for (const std::string& text : ExampleTexts()) {
        for (int time = 0; time < times; ++time) {
            const std::string changed = changes.Changed(text);
            const Comparison comparison(changed);
            ASSERT_FALSE(HasFailure()) << changed;
            read += comparison.isRead ? 1 : 0;
            amiss += comparison.isAmiss ? 1 : 0;
            falseAlarms += comparison.isFalseAlarm ? 1 : 0;
        }
    }
    EXPECT_GT(amiss, read / 5);
    EXPECT_LT(amiss, read - read / 10);
    EXPECT_LT(falseAlarms, read / 50);
    RecordProperty("read", read);
    RecordProperty("amiss", amiss);
    RecordProperty("falseAlarms", falseAlarms);
}

} // namespace
