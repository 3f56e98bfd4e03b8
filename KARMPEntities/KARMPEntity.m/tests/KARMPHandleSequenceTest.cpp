#include "KARMPHandleSequence.h"
#include "AllocationCounter.h"
#include "KARMPLinkList.h"
#include "KARMPLinkPlacer.h"
#include "KARMPTestFixture.h"
#include "TestEntity.h"

#include <algorithm>
#include <new>
#include <random>

namespace {

using Entities = std::vector<QOBSharedHandle<TestEntity>>;

Entities MakeEntities(std::size_t count)
{
    Entities entities;
    for (std::size_t i = 0; i < count; ++i)
        entities.push_back(TestEntity::create(L""));
    return entities;
}

void ExpectSame(const KARMPHandleSequence& sequence, const std::vector<QOBSharedBase>& expected)
{
    ASSERT_EQ(sequence.Count(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(sequence.At(i), expected[i]) << "at " << i;
}

TEST(HandleSequence, AgreesWithAPlainVectorWhateverTheOrderOfCalls)
{
    std::mt19937 random(20240229);
    const Entities entities = MakeEntities(400);
    KARMPHandleSequence sequence;
    std::vector<QOBSharedBase> expected;
    for (int step = 0; step < 20'000; ++step) {
        const auto& entity = entities[random() % entities.size()];
        // The sequence grows past its scanned length, shrinks to nothing, and grows again.
        const bool growing = (step / 3000) % 2 == 0;
        switch (random() % (growing ? 5 : 9)) {
        case 0:
            sequence.Append(entity);
            expected.push_back(entity);
            break;
        case 1: {
            const bool isListed =
                std::find(expected.begin(), expected.end(), entity) != expected.end();
            ASSERT_EQ(sequence.AppendOnce(entity), !isListed);
            if (!isListed)
                expected.push_back(entity);
            break;
        }
        case 2: {
            const std::size_t index = random() % (expected.size() + 3);
            sequence.Insert(index, entity);
            const auto at =
                expected.begin() + static_cast<std::ptrdiff_t>(std::min(index, expected.size()));
            expected.insert(at, entity);
            break;
        }
        case 3:
            if (!expected.empty()) {
                const std::size_t index = random() % expected.size();
                ASSERT_EQ(sequence.At(index), expected[index]);
                ASSERT_EQ(sequence.Take(index), expected[index]);
                expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(index));
            }
            break;
        case 4:
            if (!expected.empty()) {
                const std::size_t index = random() % expected.size();
                sequence.Replace(index, entity);
                expected[index] = entity;
            }
            break;
        default: {
            std::size_t position = 0;
            const auto found = std::find(expected.begin(), expected.end(), entity);
            ASSERT_EQ(sequence.Find(entity.get()),
                      static_cast<std::size_t>(found - expected.begin()));
            ASSERT_EQ(sequence.Contains(entity.get()), found != expected.end());
            ASSERT_EQ(sequence.Remove(entity.get(), &position), found != expected.end());
            if (found != expected.end()) {
                ASSERT_EQ(position, static_cast<std::size_t>(found - expected.begin()));
                expected.erase(found);
            }
        }
        }
        ASSERT_EQ(sequence.Count(), expected.size());
        if (step % 500 == 0)
            ExpectSame(sequence, expected);
    }
    ExpectSame(sequence, expected);
    const KARMPHandleSequence copy(sequence);
    ExpectSame(copy, expected);
    sequence.Clear();
    ExpectSame(sequence, {});
    ExpectSame(copy, expected);
}

// Such a sequence has no index until it is asked.
TEST(HandleSequence, AgreesWithAPlainVectorWhenItGrewByNewEntries)
{
    for (const std::size_t count : {1U, 48U, 49U, 300U}) {
        const Entities entities = MakeEntities(count);
        const auto grown = [&entities] {
            KARMPHandleSequence sequence;
            sequence.Reserve(entities.size());
            for (const auto& entity : entities)
                sequence.AppendNew(QOBSharedBase(entity));
            return sequence;
        };
        std::vector<QOBSharedBase> expected(entities.begin(), entities.end());
        ExpectSame(grown(), expected);
        ExpectSame(KARMPHandleSequence(grown()), expected);
        EXPECT_TRUE(grown().Contains(entities.back().get()));
        EXPECT_FALSE(grown().Contains(TestEntity::create(L"").get()));

        KARMPHandleSequence sequence = grown();
        EXPECT_EQ(sequence.Take(0), expected.front());
        expected.erase(expected.begin());
        ExpectSame(sequence, expected);
        sequence.AppendNew(QOBSharedBase(entities.front()));
        sequence.Insert(0, entities.front());
        expected.push_back(entities.front());
        expected.insert(expected.begin(), entities.front());
        ExpectSame(sequence, expected);
        EXPECT_TRUE(sequence.Remove(entities.front().get()));
        expected.erase(expected.begin());
        ExpectSame(sequence, expected);
    }
}

TEST(HandleSequence, ReservesWithoutAChangeOfItsEntries)
{
    const Entities entities = MakeEntities(100);
    KARMPHandleSequence sequence;
    sequence.Reserve(0);
    for (const auto& entity : entities)
        sequence.Append(entity);
    sequence.Remove(entities[50].get());
    sequence.Reserve(10);
    sequence.Reserve(1000);
    std::vector<QOBSharedBase> expected(entities.begin(), entities.end());
    expected.erase(expected.begin() + 50);
    ExpectSame(sequence, expected);
    for (const auto& entry : expected)
        EXPECT_TRUE(sequence.Contains(entry._getReferent()));
}

TEST(HandleSequence, HasNoEntryForNull)
{
    EXPECT_FALSE(KARMPHandleSequence().AppendOnce(QOBSharedBase()));
    KARMPHandleSequence sequence;
    sequence.Append({});
    sequence.AppendNew({});
    sequence.Insert(0, {});
    EXPECT_EQ(sequence.Count(), 0U);
    const auto entity = TestEntity::create(L"");
    sequence.Append(entity);
    sequence.Replace(0, {});
    EXPECT_EQ(sequence.At(0), entity);
    EXPECT_EQ(sequence.Find(nullptr), 1U);
    EXPECT_FALSE(sequence.Contains(nullptr));
    EXPECT_FALSE(sequence.Remove(nullptr));
}

TEST(HandleSequence, TakesAnEntryOfItsOwnWhileItGrows)
{
    const Entities entities = MakeEntities(1);
    KARMPHandleSequence sequence;
    sequence.Append(entities[0]);
    for (int step = 1; step < 100; ++step) {
        sequence.Append(sequence.At(0));
        sequence.Insert(0, sequence.At(sequence.Count() - 1));
    }
    EXPECT_EQ(sequence.Count(), 199U);
    EXPECT_EQ(entities[0]->getReferenceCount(), 200U);
    while (sequence.Remove(entities[0].get())) {
    }
    EXPECT_EQ(sequence.Count(), 0U);
    EXPECT_EQ(entities[0]->getReferenceCount(), 1U);
}

TEST(HandleSequence, ReleasesWhatItDrops)
{
    const Entities entities = MakeEntities(100);
    {
        KARMPHandleSequence sequence;
        for (const auto& entity : entities)
            sequence.Append(entity);
        sequence.Remove(entities[10].get());
        EXPECT_EQ(entities[10]->getReferenceCount(), 1U);
        KARMPHandleSequence taken = std::move(sequence);
        EXPECT_EQ(entities[11]->getReferenceCount(), 2U);
        taken.Clear();
        EXPECT_EQ(entities[11]->getReferenceCount(), 1U);
    }
    EXPECT_EQ(entities[12]->getReferenceCount(), 1U);
}

// Notes its number when it goes.
class Mortal : public TestEntity
{
public:
    Mortal(std::vector<int>& gone, int number) : m_gone(gone), m_number(number) {}
    ~Mortal() override { m_gone.push_back(m_number); }

private:
    std::vector<int>& m_gone;
    int m_number;
};

TEST(HandleSequence, FreesItsReferentsFirstToLastHoweverManyThereAre)
{
    for (const int count : {1, 2, 6, 7, 8, 60, 1'000}) {
        std::vector<int> gone;
        KARMPHandleSequence sequence;
        for (int number = 0; number < count; ++number)
            sequence.Append(QOBSharedBase(new Mortal(gone, number)));
        sequence.Take(0);
        sequence.Clear();
        ASSERT_EQ(gone.size(), static_cast<std::size_t>(count));
        EXPECT_TRUE(std::is_sorted(gone.begin(), gone.end())) << count;
    }
}

TEST(HandleSequence, EmptiesALongListFromEitherEndInLinearTime)
{
    const Entities entities = MakeEntities(200'000);
    for (const bool fromTheFront : {true, false}) {
        KARMPHandleSequence sequence;
        for (const auto& entity : entities)
            sequence.Append(entity);
        while (sequence.Count() > 0) {
            const std::size_t index = fromTheFront ? 0 : sequence.Count() - 1;
            const QOBSharedBase entry = sequence.At(index);
            ASSERT_TRUE(sequence.Remove(entry._getReferent()));
        }
    }
}

TEST(HandleSequence, ListsOneReferentOftenInLinearTime)
{
    const Entities entities = MakeEntities(100);
    KARMPHandleSequence sequence;
    for (std::size_t i = 0; i < 200'000; ++i)
        sequence.Append(entities[i % 2 == 0 ? 0 : i % entities.size()]);
    std::size_t position = 0;
    for (std::size_t i = 0; i < 100'000; ++i) {
        ASSERT_TRUE(sequence.Remove(entities[0].get(), &position));
        ASSERT_EQ(position, i);
    }
    EXPECT_FALSE(sequence.Contains(entities[0].get()));
    EXPECT_EQ(sequence.Count(), 100'000U);
    EXPECT_EQ(sequence.At(0), entities[1]);
    EXPECT_EQ(sequence.At(99'999), entities[99]);
}

TEST(HandleSequence, AnAdditionForWhichMemoryEndsChangesNothing)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    const Entities entities = MakeEntities(300);
    KARMPHandleSequence sequence;
    std::vector<QOBSharedBase> expected;
    const auto takeOut = [&](std::size_t index) {
        sequence.Take(index);
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(index));
    };
    std::size_t failures = 0;
    for (const auto& entity : entities) {
        bool added = false;
        for (std::size_t failing = 1; !added; ++failing) {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            try {
                if (expected.size() % 2 == 0)
                    sequence.Append(entity);
                else
                    ASSERT_TRUE(sequence.AppendOnce(entity));
                added = true;
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            ASSERT_EQ(sequence.Contains(entity.get()), added);
        }
        expected.push_back(entity);
        // A long sequence has holes from here on.
        if (expected.size() % 60 == 0)
            takeOut(20);
        ExpectSame(sequence, expected);
    }
    EXPECT_GT(failures, 10U);
    while (!expected.empty())
        takeOut(expected.size() / 2);
    ExpectSame(sequence, expected);
}

TEST(HandleSequence, LosesNothingWhenMemoryEndsWhileItIsOrderedAnew)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    const Entities entities = MakeEntities(120);
    KARMPHandleSequence sequence;
    std::vector<QOBSharedBase> expected;
    for (const auto& entity : entities) {
        sequence.Append(entity);
        expected.push_back(entity);
    }
    sequence.Take(5);
    expected.erase(expected.begin() + 5);
    {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        sequence.Insert(7, entities[5]);
    }
    expected.insert(expected.begin() + 7, entities[5]);
    ExpectSame(sequence, expected);
    EXPECT_TRUE(sequence.Contains(entities[119].get()));
    sequence.Append(entities[5]);
    expected.push_back(entities[5]);
    while (!expected.empty()) {
        const QOBSharedBase last = expected.back();
        const auto first = std::find(expected.begin(), expected.end(), last);
        ASSERT_TRUE(sequence.Remove(last._getReferent()));
        expected.erase(first);
        ExpectSame(sequence, expected);
    }
}

class LinkList : public KARMPTestFixture
{
protected:
    KARMPLinkList<TestEntity> list;
    Entities entities = MakeEntities(3);
};

TEST_F(LinkList, KeepsTheOrderOfAddingWithoutDuplicates)
{
    for (const auto& entity : entities)
        EXPECT_EQ(list.Add(entity), KARSuccess);
    EXPECT_EQ(list.Add(entities[1]), KARUnchanged);
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Remove(entities[0]), KARSuccess);
    EXPECT_EQ(list.Remove(entities[0]), KARUnchanged);
    EXPECT_EQ(list.At(0), entities[1]);
    EXPECT_EQ(list.At(1), entities[2]);
}

TEST_F(LinkList, ReportsANullHandleAtTheCaller)
{
    EXPECT_EQ(list.Add({}), KARFailure);
    EXPECT_EQ(list.Remove({}), KARFailure);
    EXPECT_EQ(list.Insert(0, {}), KARFailure);
    ASSERT_EQ(UnclaimedReports().size(), 3U);
    for (const std::string& report : UnclaimedReports())
        EXPECT_NE(report.find("KARMPHandleSequenceTest.cpp"), std::string::npos);
    ExpectReports(3);
}

TEST_F(LinkList, InsertsBeforeAnIndexAndAllowsADuplicate)
{
    list.Add(entities[0]);
    EXPECT_EQ(list.Insert(0, entities[1]), KARSuccess);
    EXPECT_EQ(list.Insert(99, entities[1]), KARSuccess);
    EXPECT_EQ(list.Insert(-1, entities[2]), KARSuccess);
    EXPECT_EQ(list.Count(), 4);
    EXPECT_EQ(list.At(0), entities[2]);
    EXPECT_EQ(list.At(1), entities[1]);
    EXPECT_EQ(list.At(3), entities[1]);
}

// The entries that a sequence gives from a position on, run by run.
std::vector<QOBSharedBase> RunsOf(const KARMPHandleSequence& sequence)
{
    std::vector<QOBSharedBase> entries;
    while (entries.size() < sequence.Count()) {
        const auto run = sequence.From(entries.size());
        EXPECT_FALSE(run.empty());
        entries.insert(entries.end(), run.begin(), run.end());
    }
    return entries;
}

TEST(HandleSequence, GivesRunsOfEntriesWithAndWithoutHoles)
{
    const Entities entities = MakeEntities(200);
    KARMPHandleSequence sequence;
    for (const auto& entity : entities)
        sequence.Append(entity);
    EXPECT_EQ(sequence.From(3).size(), entities.size() - 3);
    ExpectSame(sequence, RunsOf(sequence));
    sequence.Take(20);
    sequence.Take(150);
    EXPECT_EQ(sequence.From(60).front(), sequence.At(60));
    ExpectSame(sequence, RunsOf(sequence));
}

TEST(HandleSequence, LinksTheDuplicatesOfTheEntriesOfAnother)
{
    const Entities entities = MakeEntities(120);
    karmp::LinkPlacer placer;
    KARMPHandleSequence source;
    std::vector<QOBSharedBase> expected;
    for (std::size_t index = 1; index < 100; ++index) {
        source.Append(entities[index]);
        if (index % 3 == 0 || index == 50)
            continue;
        placer.Enter(entities[index].get(), entities[index + 20].get());
        expected.push_back(entities[index + 20]);
    }
    source.Take(49); // a hole at what has no duplicate
    {
        KARMPHandleSequence sequence;
        sequence.Append(entities[0]);
        sequence.PlaceLinks(KARMPHandleSequence(), placer);
        EXPECT_EQ(sequence.Count(), 0U);
        sequence.PlaceLinks(source, placer);
        EXPECT_TRUE(placer.HasWaiting());
        EXPECT_EQ(sequence.Count(), source.Count());
        placer.DropWaiting();
        EXPECT_TRUE(sequence.HasDroppedLinks());
        sequence.PlaceLinks(source, placer);
        EXPECT_FALSE(sequence.HasDroppedLinks());
        ExpectSame(sequence, expected);
        EXPECT_TRUE(sequence.Contains(entities[21].get()));
        EXPECT_FALSE(sequence.Contains(entities[1].get()));
        EXPECT_EQ(entities[21]->getReferenceCount(), 4U);
    }
    EXPECT_EQ(entities[21]->getReferenceCount(), 3U); // in entities, source and expected
}

TEST(HandleSequence, GetsTheLinksThatWaitedForADuplicate)
{
    const Entities entities = MakeEntities(200);
    const auto duplicateOf = [&](std::size_t index) { return entities[index + 100]; };
    karmp::LinkPlacer placer;
    KARMPHandleSequence source;
    std::vector<QOBSharedBase> expected;
    for (std::size_t index = 0; index < 100; ++index) {
        source.Append(entities[index]);
        expected.push_back(duplicateOf(index));
    }
    KARMPHandleSequence one;
    KARMPHandleSequence two;
    for (std::size_t index = 0; index < 100; ++index) {
        if (index == 30)
            one.PlaceLinks(source, placer);
        if (index == 60)
            two.PlaceLinks(source, placer);
        EXPECT_TRUE(placer.Enter(entities[index].get(), duplicateOf(index).get()));
        EXPECT_FALSE(placer.Enter(entities[index].get(), entities[0].get()));
    }
    EXPECT_FALSE(placer.HasWaiting());
    ExpectSame(one, expected);
    ExpectSame(two, expected);
    EXPECT_EQ(entities[199]->getReferenceCount(), 4U); // in entities, expected and both
}

TEST(HandleSequence, MayBeDestroyedWhenNoLinkWaitsAnyMore)
{
    const Entities entities = MakeEntities(3);
    KARMPHandleSequence source;
    KARMPHandleSequence sequence;
    source.Append(entities[0]);
    source.Append(entities[1]);
    {
        karmp::LinkPlacer placer;
        placer.Enter(entities[1].get(), entities[2].get());
        sequence.PlaceLinks(source, placer);
    }
    EXPECT_TRUE(sequence.HasDroppedLinks());
    EXPECT_FALSE(sequence.At(0));
    EXPECT_EQ(sequence.At(1), entities[2]);
}

// A copy has no slot to spare, so that the next entry moves the handles before they are indexed.
TEST(HandleSequence, GrowsOnAsACopyOfAnyLength)
{
    const Entities entities = MakeEntities(160);
    for (std::size_t length = 1; length < 110; ++length) {
        KARMPHandleSequence source;
        std::vector<QOBSharedBase> expected;
        for (std::size_t index = 0; index < length; ++index) {
            source.Append(entities[index]);
            expected.push_back(entities[index]);
        }
        KARMPHandleSequence copy(source);
        for (std::size_t index = length; index < length + 50; ++index) {
            copy.Append(entities[index]);
            expected.push_back(entities[index]);
        }
        ExpectSame(copy, expected);
        EXPECT_TRUE(copy.Contains(entities[length + 49].get()));
        EXPECT_FALSE(copy.Contains(entities[length + 50].get()));
        EXPECT_EQ(source.Count(), length);
    }
}

} // namespace
