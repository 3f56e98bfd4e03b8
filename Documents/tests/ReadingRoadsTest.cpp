// Entities are read from the records of a document, and from its nodes where those are filled: both
// give the same world and the same failed checks.
#include "ChangedDocuments.h"
#include "ReadingOutcome.h"

#include <gtest/gtest.h>

#include <string>

using namespace karmp::documents;

namespace {

void ExpectTheSame(const std::string& text)
{
    ASSERT_EQ(OutcomeOfReading(text, ReadFrom::Records), OutcomeOfReading(text, ReadFrom::Nodes))
        << text;
}

TEST(ReadingRoads, GiveTheSameWorldFromRecordsAndFromNodes)
{
    for (const std::string& text : ExampleTexts())
        ExpectTheSame(text);
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
