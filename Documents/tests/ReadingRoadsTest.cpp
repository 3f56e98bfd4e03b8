// Entities are read from the records of a document, and from its nodes where those are filled: both
// give the same world and the same failed checks.
#include "ChangedDocuments.h"
#include "KARMPCurve.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocuments.h"
#include "KARMPFailedCheck.h"
#include "KARMPReadingPlace.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <string_view>

using namespace karmp::documents;

namespace {

/// Notes each failed check with the entity that is read.
class Noting final : private KARMPFailedCheckListener
{
public:
    const std::string& Notes() const { return m_notes; }

private:
    void OnFailedCheck(const char* file, int line) override
    {
        const auto* const node =
            static_cast<const KARMPDocumentReader*>(KARMPReadingPlace::Current());
        m_notes += std::string(file) + ':' + std::to_string(line) + " at " +
                   (node != nullptr ? std::to_string(node->Line()) : std::string("none")) + '\n';
    }

    std::string m_notes;
};

void Fill(const KARMPDeserializer& node)
{
    KARMPDeserializer::ElementVector children;
    node.AppendOrderedElements(children);
    for (const KARMPDeserializer* child : children)
        Fill(*child);
}

// Replaces identifiers that are not of the document: each run makes other ones.
std::string WithoutNewIdentifiers(std::string saved, const std::string& text)
{
    constexpr std::string_view mark = "id=\"";
    for (std::size_t at = saved.find(mark); at != saved.npos; at = saved.find(mark, at + 1)) {
        const std::size_t begin = at + mark.size();
        const std::size_t size = saved.find('"', begin) - begin;
        if (text.find(saved.substr(begin, size)) == text.npos)
            saved.replace(begin, size, "new");
    }
    return saved;
}

// What reading gives: the failed checks, and the world as it is saved.
std::string Outcome(const std::string& text, bool isFilled)
{
    const Document document = Document::ReadText(text);
    if (document.Root() == nullptr)
        return {};
    if (isFilled)
        Fill(*document.Root());
    const auto world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
    const Noting noting;
    std::string outcome;
    try {
        outcome = std::to_string(world->Deserialize(document.Root())) + '\n';
    } catch (const std::exception& exception) {
        outcome = exception.what();
    }
    for (int index = 0; index < world->Count<KARMPGeometry>(); ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        if (world->Get(index, geometry) == KARSuccess &&
            geometry.isDerivedFrom(KARMPCurve::ClassInfo()))
            QOBSharedHandle<KARMPCurve>(geometry)->DeleteCurveLimitsAtEnd(true);
    }
    outcome += noting.Notes();
    std::string saved;
    SaveOptions options;
    options.check = false;
    static_cast<void>(SaveText(world, saved, options));
    return outcome + WithoutNewIdentifiers(saved, text);
}

TEST(ReadingRoads, GiveTheSameWorldFromRecordsAndFromNodes)
{
    for (const std::string& text : ExampleTexts())
        EXPECT_EQ(Outcome(text, false), Outcome(text, true)) << text.substr(0, 500);
}

TEST(ReadingRoads, GiveTheSameWorldAndFailedChecksOfChangedDocuments)
{
    constexpr int times = 60;
    Changes changes;
    for (const std::string& text : ExampleTexts()) {
        for (int time = 0; time < times; ++time) {
            const std::string changed = changes.Changed(text);
            ASSERT_EQ(Outcome(changed, false), Outcome(changed, true)) << changed;
        }
    }
}

} // namespace
