// Entities are read from the records of a document, from its nodes where those are filled, and from
// nodes of a caller's own: all give the same world and the same failed checks.
#include "ChangedDocuments.h"
#include "ReadingOutcome.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using namespace karmp::documents;

namespace {

void ExpectTheSame(const std::string& text)
{
    const std::string outcome = OutcomeOfReading(text, ReadFrom::Records);
    ASSERT_EQ(outcome, OutcomeOfReading(text, ReadFrom::Nodes)) << text;
    ASSERT_EQ(outcome, OutcomeOfReading(text, ReadFrom::Copies)) << text;
}

TEST(ReadingRoads, GiveTheSameWorldFromRecordsAndFromNodes)
{
    for (const std::string& text : ExampleTexts())
        ExpectTheSame(text);
}

// Such an identifier has no number, and equals one that has.
TEST(ReadingRoads, FindIdentifiersThatAreWrittenWithReferencesToCharacters)
{
    constexpr std::string_view mark = " id=\"";
    for (const std::string& text : ExampleTexts()) {
        for (std::size_t first = 0; first < 3; ++first) {
            std::string changed = text;
            std::size_t count = first;
            for (std::size_t at = changed.find(mark); at != changed.npos;
                 at = changed.find(mark, at + 1))
                if (++count % 3 == 0)
                    changed.replace(at + mark.size(), 1,
                                    "&#" + std::to_string(changed[at + mark.size()]) + ';');
            ASSERT_NE(changed, text);
            ExpectTheSame(changed);
        }
    }
}

TEST(ReadingRoads, GiveTheSameWorldAndFailedChecksOfChangedDocuments)
{
    constexpr int times = 60;
    Changes changes;
    for (const std::string& text : ExampleTexts()) {
        for (int time = 0; time < times; ++time) {
            ExpectTheSame(changes.Changed(text));
            if (HasFatalFailure())
                return;
        }
    }
}

} // namespace
