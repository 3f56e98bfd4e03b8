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

TEST(ObjectMap, FindsWhatWasEnteredLast)
{
    karmp::ObjectMap map;
    const auto entities = Entities(4);
    EXPECT_TRUE(map.Enter(entities[0].get(), entities[1].get()));
    EXPECT_EQ(map.Find(entities[0].get()), entities[1].get());
    EXPECT_FALSE(map.Enter(entities[0].get(), entities[2].get()));
    EXPECT_EQ(map.Find(entities[0].get()), entities[2].get());
    EXPECT_EQ(map.Find(entities[3].get()), nullptr);
    EXPECT_EQ(map.Find(nullptr), nullptr);
}

TEST(ObjectMap, TellsNeighboursApartInWhateverOrderTheyCome)
{
    const auto entities = Entities(60'000); // more pages than small blocks have runs for
    std::vector<std::size_t> order(entities.size());
    for (std::size_t index = 0; index < order.size(); ++index)
        order[index] = index;
    std::shuffle(order.begin(), order.end(), std::mt19937(5));
    karmp::ObjectMap map;
    // Every third has no entry.
    for (const std::size_t index : order)
        if (index % 3 != 0)
            ASSERT_TRUE(map.Enter(entities[index].get(), entities[index / 2].get()));
    for (std::size_t index = 0; index < order.size(); ++index)
        ASSERT_EQ(map.Find(entities[index].get()),
                  index % 3 != 0 ? entities[index / 2].get() : nullptr);
}

} // namespace
