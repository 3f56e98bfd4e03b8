#include "KARMPObjectMap.h"

#include "TestEntity.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace {

using Entity = QOBSharedHandle<TestEntity>;

std::vector<Entity> Entities(std::size_t count)
{
    std::vector<Entity> entities(count);
    for (Entity& entity : entities)
        entity = TestEntity::create(L"entity");
    return entities;
}

TEST(ObjectMap, FindsNothingAtFirst)
{
    const karmp::ObjectMap map;
    const Entity entity = TestEntity::create(L"entity");
    EXPECT_EQ(map.Find(entity.get()), nullptr);
    EXPECT_EQ(map.Find(nullptr), nullptr);
}

TEST(ObjectMap, FindsWhatItsSlotsHold)
{
    karmp::ObjectMap map;
    const auto entities = Entities(4);
    EXPECT_EQ(map.SlotOf(entities[0].get()), nullptr);
    map.SlotOf(entities[0].get()) = entities[1].get();
    EXPECT_EQ(map.Find(entities[0].get()), entities[1].get());
    map.SlotOf(entities[0].get()) = entities[2].get();
    EXPECT_EQ(map.Find(entities[0].get()), entities[2].get());
    EXPECT_EQ(map.Find(entities[3].get()), nullptr);
    EXPECT_EQ(map.Find(nullptr), nullptr);
}

TEST(ObjectMap, TellsNeighboursApartInWhateverOrderTheyCome)
{
    const auto entities = Entities(60'000); // of more runs than small blocks have
    std::vector<std::size_t> order(entities.size());
    for (std::size_t index = 0; index < order.size(); ++index)
        order[index] = index;
    std::shuffle(order.begin(), order.end(), std::mt19937(5));
    karmp::ObjectMap map;
    // Every third has no entry.
    for (const std::size_t index : order)
        if (index % 3 != 0)
            map.SlotOf(entities[index].get()) = entities[index / 2].get();
    for (std::size_t index = 0; index < order.size(); ++index)
        ASSERT_EQ(map.Find(entities[index].get()),
                  index % 3 != 0 ? entities[index / 2].get() : nullptr);
}

// Addresses of a large process lie in many areas of memory, next to one another or far apart. The
// map never looks at what is there.
TEST(ObjectMap, TellsAddressesOfManyAreasApart)
{
    constexpr std::uintptr_t Area = 1U << 21U;
    const auto address = [](std::uintptr_t number) {
        return reinterpret_cast<QOBSharedObject*>(
            (number + 1) * Area + (number % 3 == 0 ? number << 40U : 0) + 64 * number);
    };
    karmp::ObjectMap map;
    for (std::uintptr_t number = 0; number < 300; ++number)
        map.SlotOf(address(number)) = address(number + 1);
    for (std::uintptr_t number = 0; number < 300; ++number)
        ASSERT_EQ(map.Find(address(number)), address(number + 1));
    EXPECT_EQ(map.Find(address(300)), nullptr);
    int entries = 0;
    map.ForEachSlot([&](const QOBSharedObject* slot) { entries += slot != nullptr ? 1 : 0; });
    EXPECT_EQ(entries, 300);
}

} // namespace
