#include "KARMPRegistry.h"

#include "TestEntity.h"
#include "WorldTesting.h"

#include <algorithm>
#include <array>
#include <functional>

namespace {

using Entity = QOBSharedHandle<TestEntity>;

class Registry : public KARMPTestFixture
{
protected:
    static Entity make() { return TestEntity::create(L"entity"); }
    std::vector<Entity> listed() const
    {
        std::vector<Entity> entities(static_cast<std::size_t>(registry.Count()));
        for (int i = 0; i < registry.Count(); ++i)
            EXPECT_EQ(registry.Get(i, entities[static_cast<std::size_t>(i)]), KARSuccess);
        return entities;
    }
    std::vector<Entity> FiledUnder(KARBaseUnknown_var first, KARBaseUnknown_var second) const
    {
        QOBSharedVector<TestEntity> entities{a};
        const KARStatus status = registry.Get(first, second, entities);
        EXPECT_EQ(status, entities.empty() ? KARUnchanged : KARSuccess);
        return entities;
    }
    bool HasKeys(const Entity& entity) const
    {
        KARBaseUnknown_var first;
        KARBaseUnknown_var second;
        return registry.GetKeys(entity, first, second) == KARSuccess;
    }

    KARMPRegistry<TestEntity> registry;
    const Entity a = make();
    const Entity b = make();
    const Entity c = make();
    KARBaseUnknown_var null;
    KARBaseUnknown_var key1 = WorldTestKey::Make();
    KARBaseUnknown_var key2 = WorldTestKey::Make();
    KARBaseUnknown_var key3 = WorldTestKey::Make();
};

TEST_F(Registry, IsEmptyAtFirst)
{
    EXPECT_EQ(registry.Count(), 0);
    EXPECT_EQ(registry.EmptyRegistry(), KARSuccess);
    EXPECT_EQ(registry.Remove(a), KARUnchanged);
    EXPECT_TRUE(FiledUnder(key1, key2).empty());
    EXPECT_TRUE(FiledUnder(null, null).empty());
}

TEST_F(Registry, RefusesANullHandle)
{
    EXPECT_EQ(registry.Add(nullptr), KARUnchanged);
    EXPECT_EQ(registry.Add(key1, key2, nullptr), KARUnchanged);
    EXPECT_EQ(registry.Add(null, null, nullptr), KARUnchanged);
    EXPECT_EQ(registry.Remove(nullptr), KARUnchanged);
    EXPECT_EQ(registry.Count(), 0);
    EXPECT_TRUE(FiledUnder(key1, key2).empty());
}

TEST_F(Registry, ListsAnEntityOnceByThePlainForm)
{
    EXPECT_EQ(registry.Add(a), KARSuccess);
    EXPECT_EQ(registry.Add(a), KARUnchanged);
    EXPECT_EQ(registry.Count(), 1);
}

TEST_F(Registry, ListsAnEntityAgainWhenItIsFiledAfterThePlainForm)
{
    EXPECT_EQ(registry.Add(a), KARSuccess);
    EXPECT_EQ(registry.Add(key1, key2, a), KARSuccess);
    EXPECT_EQ(listed(), (std::vector{a, a}));
}

TEST_F(Registry, RefusesThePlainFormForAnEntityThatIsFiled)
{
    EXPECT_EQ(registry.Add(key1, key2, a), KARSuccess);
    EXPECT_EQ(registry.Add(a), KARUnchanged);
    EXPECT_EQ(registry.Count(), 1);
}

TEST_F(Registry, FilesAnEntityUnderOnePairOnly)
{
    EXPECT_EQ(registry.Add(key1, key2, a), KARSuccess);
    EXPECT_EQ(registry.Add(key2, key3, a), KARUnchanged);
    EXPECT_EQ(registry.Count(), 1);
    EXPECT_TRUE(FiledUnder(key2, key3).empty());
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(registry.GetKeys(a, first, second), KARSuccess);
    EXPECT_EQ(first, key1);
    EXPECT_EQ(second, key2);
}

TEST_F(Registry, GivesTheEntitiesOfAPairInOrderOfFiling)
{
    registry.Add(key1, key2, b);
    registry.Add(key1, key2, a);
    registry.Add(key2, key1, c);
    EXPECT_EQ(listed(), (std::vector{b, a, c}));
    EXPECT_EQ(FiledUnder(key1, key2), (std::vector{b, a}));
    EXPECT_EQ(FiledUnder(key2, key1), (std::vector{c}));
    Entity first;
    EXPECT_EQ(registry.Get(key1, key2, first), KARSuccess);
    EXPECT_EQ(first, b);
}

TEST_F(Registry, GivesANullHandleForAPairThatIsUnknown)
{
    Entity entity = a;
    EXPECT_EQ(registry.Get(key1, key2, entity), KARUnchanged);
    EXPECT_FALSE(entity);
}

TEST_F(Registry, KeepsPairsWithNullKeysApart)
{
    const std::array keys{null, key1, key2, key3};
    std::vector<Entity> entities;
    for (KARBaseUnknown_var first : keys) {
        for (KARBaseUnknown_var second : keys) {
            entities.push_back(make());
            EXPECT_EQ(registry.Add(first, second, entities.back()), KARSuccess);
        }
    }
    EXPECT_EQ(listed(), entities);
    std::size_t next = 0;
    for (KARBaseUnknown_var first : keys) {
        for (KARBaseUnknown_var second : keys) {
            const bool filed = first != nullptr || second != nullptr;
            const std::vector expected{entities[next++]};
            EXPECT_EQ(FiledUnder(first, second), filed ? expected : std::vector<Entity>());
        }
    }
}

TEST_F(Registry, FilesNothingUnderTwoNullKeys)
{
    EXPECT_EQ(registry.Add(null, null, a), KARSuccess);
    EXPECT_EQ(registry.Add(null, null, a), KARUnchanged);
    EXPECT_TRUE(FiledUnder(null, null).empty());
    EXPECT_FALSE(HasKeys(a));
    EXPECT_EQ(registry.Add(null, key2, b), KARSuccess);
    EXPECT_TRUE(HasKeys(b));
}

TEST_F(Registry, GivesANullHandleOutsideTheList)
{
    registry.Add(a);
    for (const int index : {-1, 1, 2}) {
        Entity entity = b;
        EXPECT_EQ(registry.Get(index, entity), KARUnchanged);
        EXPECT_FALSE(entity);
    }
}

TEST_F(Registry, KeepsTheOrderOfTheRestOnRemoval)
{
    for (const Entity& entity : {a, b, c})
        registry.Add(entity);
    EXPECT_EQ(registry.Remove(b), KARSuccess);
    EXPECT_EQ(listed(), (std::vector{a, c}));
    EXPECT_EQ(registry.Remove(b), KARUnchanged);
    EXPECT_EQ(registry.Add(b), KARSuccess);
    EXPECT_EQ(listed(), (std::vector{a, c, b}));
}

TEST_F(Registry, StillGivesARemovedEntityByItsKeys)
{
    Entity entity = make();
    registry.Add(key1, key2, entity);
    EXPECT_EQ(registry.Remove(entity), KARSuccess);
    EXPECT_EQ(registry.Count(), 0);
    KARBaseUnknown_var first = key1;
    KARBaseUnknown_var second = key2;
    EXPECT_EQ(registry.GetKeys(entity, first, second), KARUnchanged);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(FiledUnder(key1, key2), (std::vector{entity}));
    EXPECT_EQ(registry.Remove(entity), KARUnchanged);
    const int alive = TestEntity::Alive();
    entity = nullptr;
    EXPECT_EQ(TestEntity::Alive(), alive);
    EXPECT_EQ(registry.Get(key1, key2, entity), KARSuccess);
    EXPECT_TRUE(entity);
}

TEST_F(Registry, FilesARemovedEntityBehindItsFormerSelf)
{
    registry.Add(key1, key2, a);
    registry.Remove(a);
    EXPECT_EQ(registry.Add(key1, key2, a), KARSuccess);
    EXPECT_EQ(registry.Count(), 1);
    EXPECT_EQ(FiledUnder(key1, key2), (std::vector{a, a}));
    EXPECT_TRUE(HasKeys(a));
}

TEST_F(Registry, DropsTheKeysWithTheFirstOfTwoEntries)
{
    registry.Add(a);
    registry.Add(b);
    registry.Add(key1, key2, a);
    EXPECT_EQ(registry.Remove(a), KARSuccess);
    EXPECT_EQ(listed(), (std::vector{b, a}));
    EXPECT_FALSE(HasKeys(a));
    EXPECT_EQ(registry.Remove(a), KARSuccess);
    EXPECT_EQ(registry.Remove(a), KARUnchanged);
}

TEST_F(Registry, FindsByAnyKeyThatStandsForTheSame)
{
    KARBaseUnknown_var alias = WorldTestKey::Make(key1);
    registry.Add(key1, key2, a);
    EXPECT_EQ(registry.Add(alias, key2, b), KARSuccess);
    EXPECT_EQ(FiledUnder(alias, key2), (std::vector{a, b}));
    EXPECT_EQ(FiledUnder(key1, key2), (std::vector{a, b}));
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(registry.GetKeys(b, first, second), KARSuccess);
    EXPECT_EQ(first, key1);
    EXPECT_NE(alias, key1);
}

TEST_F(Registry, TakesWhatAKeyStandsForAndGoesNoFurther)
{
    KARBaseUnknown_var middle = WorldTestKey::Make(key1);
    KARBaseUnknown_var alias = WorldTestKey::Make(middle);
    EXPECT_EQ(registry.Add(alias, alias, a), KARSuccess);
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(registry.GetKeys(a, first, second), KARSuccess);
    EXPECT_EQ(first, middle);
    EXPECT_EQ(second, middle);
    EXPECT_EQ(FiledUnder(alias, alias), (std::vector{a}));
}

TEST_F(Registry, KeepsAKeyThatStandsForNothing)
{
    KARBaseUnknown_var loose = WorldTestKey::Make(nullptr);
    EXPECT_EQ(registry.Add(loose, null, a), KARSuccess);
    KARBaseUnknown_var first;
    KARBaseUnknown_var second = key1;
    EXPECT_EQ(registry.GetKeys(a, first, second), KARSuccess);
    EXPECT_EQ(first, loose);
    EXPECT_EQ(second, nullptr);
    // It is not the null key, and all such keys are one.
    EXPECT_EQ(FiledUnder(WorldTestKey::Make(nullptr), null), (std::vector{a}));
    EXPECT_TRUE(FiledUnder(null, loose).empty());
}

// Keys compare by what they stand for at that moment, so one that changes what it stands for is not
// found.
class RegistryOfShiftingKeys : public Registry
{
protected:
    RegistryOfShiftingKeys()
    {
        std::sort(keys.begin(), keys.end(), [](const auto& left, const auto& right) {
            return std::less<const KARBaseUnknown*>()(left.Get(), right.Get());
        });
        registry.Add(keys[1], null, a);
        registry.Add(keys[2], null, b);
        WorldTestKey::Resolve(keys[2], keys[0]);
    }

    std::array<KARBaseUnknown_var, 3> keys{key1, key2, key3};
};

TEST_F(RegistryOfShiftingKeys, FailsToRemoveWhatIsNotUnderItsKeysAndLeavesItTheKeys)
{
    EXPECT_EQ(registry.Remove(b), KARFailure);
    EXPECT_EQ(listed(), (std::vector{a}));
    EXPECT_TRUE(HasKeys(b));
    EXPECT_EQ(registry.Add(key1, null, b), KARUnchanged);
    EXPECT_EQ(registry.Remove(b), KARUnchanged);
}

TEST_F(RegistryOfShiftingKeys, IsEmptiedAllTheSame)
{
    EXPECT_EQ(registry.EmptyRegistry(), KARSuccess);
    EXPECT_EQ(registry.Count(), 0);
    EXPECT_FALSE(HasKeys(a));
    EXPECT_TRUE(HasKeys(b));
}

TEST_F(Registry, StaysFilledUnderItsKeysWhenEmptied)
{
    registry.Add(key1, key2, a);
    registry.Add(b);
    registry.Add(key1, key2, c);
    EXPECT_EQ(registry.EmptyRegistry(), KARSuccess);
    EXPECT_EQ(registry.Count(), 0);
    EXPECT_FALSE(HasKeys(a));
    EXPECT_FALSE(HasKeys(c));
    EXPECT_EQ(FiledUnder(key1, key2), (std::vector{a, c}));
}

TEST_F(Registry, CopiesAllThreeViews)
{
    registry.Add(key1, key2, a);
    registry.Add(b);
    registry.Add(key1, key2, c);
    registry.Remove(c);
    KARMPRegistry<TestEntity> copy(registry);
    registry.EmptyRegistry();

    EXPECT_EQ(copy.Count(), 2);
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(copy.GetKeys(a, first, second), KARSuccess);
    EXPECT_EQ(copy.GetKeys(c, first, second), KARUnchanged);
    QOBSharedVector<TestEntity> entities;
    EXPECT_EQ(copy.Get(key1, key2, entities), KARSuccess);
    EXPECT_EQ(entities, (std::vector{a, c}));
    EXPECT_EQ(copy.Remove(a), KARSuccess);
}

TEST_F(Registry, ReleasesEntitiesAndKeysWhenItDies)
{
    const int alive = TestEntity::Alive();
    const unsigned int references = WorldTestKey::References(key1);
    {
        KARMPRegistry<TestEntity> other;
        other.Add(make());
        const Entity removed = make();
        other.Add(key1, key2, removed);
        other.Remove(removed);
        other.Add(key1, key2, make());
        EXPECT_GT(WorldTestKey::References(key1), references);
    }
    EXPECT_EQ(TestEntity::Alive(), alive);
    EXPECT_EQ(WorldTestKey::References(key1), references);
}

// An entity that tells when it goes.
class LeavingEntity : public TestEntity
{
public:
    LeavingEntity(std::vector<int>& left, int number) : m_left(left), m_number(number) {}
    ~LeavingEntity() override { m_left.push_back(m_number); }

private:
    std::vector<int>& m_left;
    int m_number;
};

TEST_F(Registry, DropsWhatIsUnderKeysOnlyBeforeWhatItLists)
{
    std::vector<int> left;
    {
        KARMPRegistry<TestEntity> other;
        other.Add(Entity(new LeavingEntity(left, 1)));
        other.Add(key1, key2, Entity(new LeavingEntity(left, 2)));
        other.Add(key1, key2, Entity(new LeavingEntity(left, 3)));
        Entity removed;
        other.Get(1, removed);
        other.Remove(removed);
        removed = nullptr;
        EXPECT_TRUE(left.empty());
    }
    EXPECT_EQ(left, (std::vector{2, 1, 3}));
}

// Quadratic work would show here.
TEST_F(Registry, StaysFastWhenItIsLong)
{
    constexpr int Entries = 100'000;
    std::vector<Entity> entities;
    for (int i = 0; i < Entries; ++i)
        entities.push_back(make());

    for (const Entity& entity : entities)
        ASSERT_EQ(registry.Add(entity), KARSuccess);
    for (const Entity& entity : entities)
        ASSERT_EQ(registry.Add(entity), KARUnchanged);
    for (const Entity& entity : entities)
        ASSERT_EQ(registry.Remove(entity), KARSuccess);
    ASSERT_EQ(registry.Count(), 0);

    for (const Entity& entity : entities)
        ASSERT_EQ(registry.Add(key1, key2, entity), KARSuccess);
    for (auto entity = entities.rbegin(); entity != entities.rend(); ++entity)
        ASSERT_EQ(registry.Remove(*entity), KARSuccess);
    ASSERT_EQ(registry.Count(), 0);

    for (const Entity& entity : entities)
        ASSERT_EQ(registry.Add(key1, null, entity), KARSuccess);
    EXPECT_EQ(FiledUnder(key1, null).size(), entities.size());
    registry.EmptyRegistry();
    EXPECT_EQ(registry.Count(), 0);
    EXPECT_FALSE(HasKeys(entities.back()));
}

} // namespace
