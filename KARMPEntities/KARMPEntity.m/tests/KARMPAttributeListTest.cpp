#include "KARMPAttributeList.h"
#include "AllocationCounter.h"
#include "KARMPOutput.h"
#include "KARMPTestFixture.h"

#include <random>
#include <string>
#include <vector>

namespace {

using Output = QOBSharedHandle<KARMPOutput>;
using List = KARMPAttributeList<KARMPOutput>;

Output NewOutput(const std::string& text)
{
    const Output output = KARMPOutput::create(L"");
    output->SetID(KARString(std::string_view(text)));
    return output;
}

/// What a walk over the list finds.
Output Walk(const List& list, std::string_view text)
{
    for (int index = 0; index < list.Count(); ++index)
        if (list.At(index)->GetID() == text)
            return list.At(index);
    return {};
}

class AttributeList : public KARMPTestFixture
{
protected:
    /// Adds outputs with the numbers from the list's count on as texts.
    void Fill(int count)
    {
        for (int number = list.Count(); number < count; ++number)
            list.Add(NewOutput(std::to_string(number)));
    }
    List list;
};

TEST_F(AttributeList, HasTheResultsOfALinkList)
{
    const Output first = NewOutput("first");
    EXPECT_EQ(list.Count(), 0);
    EXPECT_FALSE(list.Find("first"));
    EXPECT_EQ(list.Add(first), KARSuccess);
    EXPECT_EQ(list.Add(first), KARUnchanged);
    EXPECT_EQ(list.Count(), 1);
    Output got;
    EXPECT_EQ(list.Get(0, got), KARSuccess);
    EXPECT_EQ(got, first);
    for (const int outside : {-1, 1}) {
        got = first;
        EXPECT_EQ(list.Get(outside, got), KARFailure);
        EXPECT_FALSE(got);
    }
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Get(0, got), KARFailure);
    EXPECT_FALSE(list.Find("first"));
    ExpectReports(0);
    EXPECT_EQ(list.Add({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(AttributeList, FindsWhatIsAddedBehindASearch)
{
    Fill(100);
    EXPECT_FALSE(list.Find("100"));
    Fill(300);
    EXPECT_EQ(list.Find("100"), list.At(100));
    EXPECT_EQ(list.Find("299"), list.At(299));
    EXPECT_FALSE(list.Find("300"));
}

TEST_F(AttributeList, FollowsTextsThatChange)
{
    Fill(100);
    EXPECT_EQ(list.Find("70"), list.At(70));
    list.At(20)->SetID("70");
    EXPECT_EQ(list.Find("70"), list.At(20));
    EXPECT_FALSE(list.Find("20"));
    list.At(20)->SetID("");
    EXPECT_EQ(list.Find("70"), list.At(70));
    EXPECT_EQ(list.Find(""), list.At(20));
    // The same text once more, and a change of one that was never searched.
    list.At(20)->SetID("");
    Fill(101);
    list.At(100)->SetID("late");
    EXPECT_EQ(list.Find("late"), list.At(100));
    EXPECT_FALSE(list.Find("100"));
}

TEST_F(AttributeList, FollowsATextThatAnotherListKnows)
{
    Fill(100);
    List other;
    for (int index = 99; index >= 0; --index)
        other.Add(list.At(index));
    EXPECT_EQ(list.Find("5"), other.Find("5"));
    list.At(5)->SetID("five");
    EXPECT_EQ(list.Find("five"), list.At(5));
    list.At(5)->SetID("fifth");
    EXPECT_EQ(other.Find("fifth"), list.At(5));
    EXPECT_FALSE(other.Find("five"));
    EXPECT_FALSE(list.Find("five"));
}

TEST_F(AttributeList, KnowsNothingOfAFormerContent)
{
    Fill(100);
    EXPECT_TRUE(list.Find("50"));
    list.Clear();
    for (int number = 0; number < 100; ++number)
        list.Add(NewOutput("new " + std::to_string(number)));
    EXPECT_FALSE(list.Find("50"));
    EXPECT_EQ(list.Find("new 50"), list.At(50));
}

TEST_F(AttributeList, FindsWhatAWalkFinds)
{
    std::mt19937 random(20180101);
    const auto below = [&random](std::size_t count) { return random() % count; };
    // Few texts for many entries, so that most stand several times.
    const auto text = [&] { return std::string(below(3), 'a') + std::to_string(below(60)); };
    std::vector<List> lists(3);
    std::vector<Output> outputs;
    for (int step = 0; step < 20'000; ++step) {
        List& one = lists[below(lists.size())];
        const std::size_t what = below(100);
        if (what < 4) {
            outputs.push_back(NewOutput(below(8) == 0 ? std::string() : text()));
            one.Add(outputs.back());
        } else if (what < 6 && !outputs.empty()) {
            one.Add(outputs[below(outputs.size())]);
        } else if (what < 12 && !outputs.empty()) {
            outputs[below(outputs.size())]->SetID(KARString(std::string_view(text())));
        } else if (what == 12 && below(40) == 0) {
            one.Clear();
        } else {
            const std::string searched = below(20) == 0 ? std::string() : text();
            ASSERT_EQ(one.Find(searched), Walk(one, searched)) << step << ' ' << searched;
        }
    }
    EXPECT_GT(lists[0].Count() + lists[1].Count() + lists[2].Count(), 300);
    ExpectReports(0);
}

TEST_F(AttributeList, FindsTheSameWithoutMemoryForAnIndex)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    for (const std::size_t failing : {1U, 2U, 3U, 4U}) {
        list.Clear();
        Fill(200);
        list.At(150)->SetID("40");
        AllocationCounter counter;
        for (int search = 0; search < 5; ++search) {
            counter.FailAllocation(failing);
            EXPECT_EQ(list.Find("40"), list.At(40));
            EXPECT_EQ(list.Find("199"), list.At(199));
            EXPECT_FALSE(list.Find("200"));
        }
        counter.FailAllocation(0);
        EXPECT_EQ(list.Find("40"), list.At(40));
    }
}

TEST_F(AttributeList, AllocatesNothingToSearchOnceItHasItsIndex)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    Fill(1000);
    EXPECT_TRUE(list.Find("999"));
    const AllocationCounter counter;
    for (int search = 0; search < 100; ++search)
        EXPECT_TRUE(list.Find("999"));
    EXPECT_EQ(counter.Count(), 0U);
}

} // namespace
