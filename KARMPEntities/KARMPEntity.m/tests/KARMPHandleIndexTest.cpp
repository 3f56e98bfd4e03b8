#include "KARMPHandleIndex.h"
#include "TestEntity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

constexpr std::size_t None = 1'000'000;

// Keeps slots and index side by side, as a sequence does.
class HandleIndex : public ::testing::Test
{
protected:
    void Append(const QOBSharedBase& handle)
    {
        const std::size_t entries = Entries();
        index.Append(slots.data(), entries, handle._getReferent());
        slots.push_back(handle);
    }
    void Replace(std::size_t slot, const QOBSharedBase& handle)
    {
        index.Replace(slots.data(), slot, handle._getReferent());
        slots[slot] = handle;
    }
    void Remove(std::size_t slot)
    {
        index.Remove(slots.data(), slot);
        slots[slot].detach();
        while (!slots.empty() && !slots.back()) {
            index.Pop();
            slots.pop_back();
        }
    }
    std::size_t Entries() const
    {
        return static_cast<std::size_t>(std::count_if(
            slots.begin(), slots.end(),
            [](const QOBSharedBase& handle) { return static_cast<bool>(handle); }));
    }
    std::size_t Find(const QOBSharedBase& handle) const
    {
        return index.Find(slots.data(), handle._getReferent(), None);
    }
    std::size_t FirstSlot(const QOBSharedBase& handle) const
    {
        const auto found = std::find(slots.begin(), slots.end(), handle);
        return found != slots.end() ? static_cast<std::size_t>(found - slots.begin()) : None;
    }
    void ExpectPositionsOfAllSlots()
    {
        std::size_t position = 0;
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            if (!slots[slot])
                continue;
            ASSERT_EQ(index.SlotAt(slots.data(), position), slot);
            ASSERT_EQ(index.PositionOf(slots.data(), slot), position);
            ++position;
        }
    }
    static std::vector<QOBSharedBase> MakeHandles(std::size_t count)
    {
        std::vector<QOBSharedBase> handles;
        for (std::size_t i = 0; i < count; ++i)
            handles.push_back(TestEntity::create(L""));
        return handles;
    }

    karmp::HandleIndex index;
    std::vector<QOBSharedBase> slots;
};

TEST_F(HandleIndex, FindsTheSlotOfEachReferentAndOfNoOther)
{
    const auto handles = MakeHandles(300);
    for (const QOBSharedBase& handle : handles)
        Append(handle);
    EXPECT_EQ(index.SlotCount(), 300U);
    for (std::size_t i = 0; i < handles.size(); ++i)
        ASSERT_EQ(Find(handles[i]), i);
    EXPECT_EQ(Find(TestEntity::create(L"")), None);
}

TEST_F(HandleIndex, FindsTheFirstOfTheSlotsOfOneReferent)
{
    const auto handles = MakeHandles(3);
    for (const std::size_t i : {0U, 1U, 0U, 2U, 0U})
        Append(handles[i]);
    EXPECT_EQ(Find(handles[0]), 0U);
    Remove(0);
    EXPECT_EQ(Find(handles[0]), 2U);
    Remove(4);
    EXPECT_EQ(Find(handles[0]), 2U);
    EXPECT_EQ(index.SlotCount(), 4U);
    Remove(2);
    EXPECT_EQ(Find(handles[0]), None);
    EXPECT_EQ(Find(handles[1]), 1U);
    EXPECT_EQ(Find(handles[2]), 3U);
}

TEST_F(HandleIndex, FindsTheFirstSlotOfWhatReplacedOthers)
{
    const auto handles = MakeHandles(3);
    for (const QOBSharedBase& handle : handles)
        Append(handle);
    Replace(2, handles[0]);
    EXPECT_EQ(Find(handles[2]), None);
    EXPECT_EQ(Find(handles[0]), 0U);
    Replace(0, handles[2]);
    EXPECT_EQ(Find(handles[0]), 2U);
    Replace(1, handles[0]);
    EXPECT_EQ(Find(handles[0]), 1U);
    EXPECT_EQ(Find(handles[1]), None);
    Replace(1, handles[0]);
    EXPECT_EQ(Find(handles[0]), 1U);
    Remove(1);
    EXPECT_EQ(Find(handles[0]), 2U);
    ExpectPositionsOfAllSlots();
}

TEST_F(HandleIndex, CountsPositionsPastHoles)
{
    for (const QOBSharedBase& handle : MakeHandles(100))
        Append(handle);
    ExpectPositionsOfAllSlots();
    for (const std::size_t slot : {0U, 1U, 50U, 51U, 98U})
        Remove(slot);
    ExpectPositionsOfAllSlots();
    for (const QOBSharedBase& handle : MakeHandles(30))
        Append(handle);
    ExpectPositionsOfAllSlots();
}

TEST_F(HandleIndex, CanBeEmptiedAndFilledAgain)
{
    const auto handles = MakeHandles(10);
    for (int round = 0; round < 2; ++round) {
        for (const QOBSharedBase& handle : handles)
            Append(handle);
        ExpectPositionsOfAllSlots();
        for (std::size_t slot = 0; slot < handles.size(); ++slot)
            Remove(slot);
        EXPECT_EQ(index.SlotCount(), 0U);
        for (const QOBSharedBase& handle : handles)
            ASSERT_EQ(Find(handle), None);
    }
}

TEST_F(HandleIndex, AgreesWithAScanWhateverTheOrderOfCalls)
{
    std::mt19937 random(20240229);
    const auto handles = MakeHandles(150);
    for (int step = 0; step < 6'000; ++step) {
        const QOBSharedBase& handle = handles[random() % handles.size()];
        const std::size_t slot = FirstSlot(handle);
        ASSERT_EQ(Find(handle), slot);
        const std::size_t other = slots.empty() ? 0 : random() % slots.size();
        if (slot == None || random() % 4 == 0)
            Append(handle);
        else if (random() % 3 == 0 && slots[other])
            Replace(other, handle);
        else
            Remove(slot);
        ASSERT_EQ(index.SlotCount(), slots.size());
        if (step % 200 == 0)
            ExpectPositionsOfAllSlots();
    }
}

} // namespace
