#include "KARMPAxisSystem.h"
#include "ModelObject.h"
#include "QOBException.h"
#include "TestEntity.h"
#include "WorldTesting.h"

namespace {

class WorldRegistries : public WorldFixture
{};

TEST_F(WorldRegistries, PlacesAValueUnderItsBasicWorld)
{
    const auto plain = TestOf<KARMPValue>::create(L"V1");
    const auto filed = TestOf<KARMPValue>::create(L"V2");
    const auto key = WorldTestKey::Make();
    EXPECT_EQ(world->Add(plain), KARSuccess);
    EXPECT_EQ(world->Add(key, KARBaseUnknown_var(), filed), KARSuccess);
    EXPECT_TRUE(basicWorld->hasLogicalChild(plain));
    EXPECT_TRUE(basicWorld->hasLogicalChild(filed));
    EXPECT_EQ(world->Add(plain), KARUnchanged);
    EXPECT_EQ(basicWorld->getLogicalChildCount(), 2U);
    EXPECT_EQ(world->Add(QOBSharedHandle<KARMPValue>()), KARUnchanged);
    EXPECT_EQ(basicWorld->getLogicalChildCount(), 2U);
    EXPECT_EQ(world->Count<KARMPValue>(), 2);
}

TEST_F(WorldRegistries, PlacesNoOtherEntity)
{
    const auto body = TestOf<KARMPBody>::create(L"B");
    EXPECT_EQ(world->Add(body), KARSuccess);
    EXPECT_FALSE(basicWorld->hasLogicalChild(body));
}

TEST_F(WorldRegistries, ReportsAValueThatItCannotPlaceAndListsIt)
{
    const auto unbound = KARMPWorld::create(nullptr);
    EXPECT_EQ(unbound->Add(TestOf<KARMPValue>::create(L"V")), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(unbound->Count<KARMPValue>(), 1);
}

TEST_F(WorldRegistries, PlacesAValueUnderAHostThatIsNoBasicWorld)
{
    const auto unbound = KARMPWorld::create(nullptr);
    const auto host = TestEntity::create(L"host");
    const auto value = TestOf<KARMPValue>::create(L"V");
    ASSERT_EQ(unbound->bindExtension(host), KARSuccess);
    EXPECT_EQ(unbound->Add(value), KARSuccess);
    EXPECT_TRUE(host->hasLogicalChild(value));
    EXPECT_EQ(unbound->Count<KARMPValue>(), 1);
}

// A host that an extension can have but no entity can stand under.
class PlainHost : public QOBExtendibleObject
{
public:
    using QOBExtendibleObject::QOBExtendibleObject;
};

TEST_F(WorldRegistries, ThrowsWhenAValueCannotStandUnderItsHost)
{
    const auto unbound = KARMPWorld::create(nullptr);
    unbound->bindExtension(QOBSharedHandle<QOBExtendibleObject>(new PlainHost));
    EXPECT_THROW(unbound->Add(TestOf<KARMPValue>::create(L"V")), QOBEInvalidCast);
}

TEST_F(WorldRegistries, EmptiesItsRegistriesAndKeepsItsGlobals)
{
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        world->Add(TestOf<T>::create(L"entity"));
    });
    EXPECT_EQ(world->EmptyWorld(), KARSuccess);
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        EXPECT_EQ(world->Count<T>(), 0) << T::ClassName();
    });
    EXPECT_TRUE(GlobalBody(*world));
    EXPECT_TRUE(GlobalAxisSystem(*world));
    EXPECT_TRUE(GlobalTime(*world));
}

// An entity that tells when it goes.
template <class T>
class Leaving : public TestOf<T>
{
public:
    Leaving(std::vector<std::string>& left, std::string name)
        : m_left(left), m_name(std::move(name))
    {}
    ~Leaving() override { m_left.push_back(m_name); }

private:
    std::vector<std::string>& m_left;
    std::string m_name;
};

// A table that tells when it is released.
class LeavingTable : public ModelObject
{
public:
    explicit LeavingTable(std::vector<std::string>& left) : m_left(left) {}
    unsigned int Release() override
    {
        m_left.emplace_back("table");
        return ModelObject::Release();
    }

private:
    std::vector<std::string>& m_left;
};

class OrderOfAWorld : public KARMPTestFixture
{
protected:
    // Only the registry holds an entity that stands under no basic world.
    OrderOfAWorld()
    {
        karmp::Families::ForEach([this](auto family) {
            using T = typename decltype(family)::Type;
            world->Add(make<T>(T::ClassName().substr(5)));
        });
        ExpectReports(1); // the value cannot be placed
    }
    template <class T>
    QOBSharedHandle<T> make(const std::string& name)
    {
        return QOBSharedHandle<T>(new Leaving<T>(left, name));
    }

    const std::vector<std::string> families{
        "Actuator",         "Body",         "Connector",    "Constraint",   "Geometry",
        "Interaction",      "Joint",        "Material",     "Sensor",       "Value",
        "Variable",         "Shape",        "Attribute",    "Support",      "DebugEntity",
        "InitialCondition", "AnalysisCase", "AnalysisStep", "GenericEntity"};
    std::vector<std::string> left;
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(nullptr);
};

TEST_F(OrderOfAWorld, EmptiesItsRegistriesFromTheFirstToTheLast)
{
    EXPECT_EQ(world->EmptyWorld(), KARSuccess);
    EXPECT_EQ(left, families);
}

TEST_F(OrderOfAWorld, ReleasesItsTableThenWhatItNamesThenItsRegistriesFromTheLastToTheFirst)
{
    LeavingTable table(left);
    world->SetTable(&table);
    world->SetGlobalBody(make<KARMPBody>("global body"));
    world->SetGlobalAxisSystem(make<KARMPAxisSystem>("global axis system"));
    world->SetGlobalTime(make<KARMPVariable>("global time"));
    world->SetGroundBody(make<KARMPBody>("ground body"));
    world = nullptr;
    std::vector<std::string> expected{"table", "ground body", "global time", "global axis system",
                                      "global body"};
    expected.insert(expected.end(), families.rbegin(), families.rend());
    EXPECT_EQ(left, expected);
}

template <class T>
class FamilyOfAWorld : public WorldFixture
{};

template <class... T>
::testing::Types<T...> typesOf(karmp::FamilyList<T...>);
using AllFamilies = decltype(typesOf(karmp::Families()));

struct FamilyName
{
    template <class T>
    static std::string GetName(int)
    {
        return T::ClassName();
    }
};
TYPED_TEST_SUITE(FamilyOfAWorld, AllFamilies, FamilyName);

TYPED_TEST(FamilyOfAWorld, HasTheOperationsOfItsRegistry)
{
    KARMPWorld& target = *this->world;
    const int globals = target.template Count<TypeParam>();
    const auto plain = TestOf<TypeParam>::create(L"plain");
    const auto filed = TestOf<TypeParam>::create(L"filed");
    const auto key1 = WorldTestKey::Make();
    const auto key2 = WorldTestKey::Make();
    EXPECT_EQ(target.Add(plain), KARSuccess);
    EXPECT_EQ(target.Add(plain), KARUnchanged);
    EXPECT_EQ(target.Add(key1, key2, filed), KARSuccess);
    EXPECT_EQ(target.template Count<TypeParam>(), globals + 2);

    QOBSharedHandle<TypeParam> entity;
    EXPECT_EQ(target.Get(globals, entity), KARSuccess);
    EXPECT_EQ(entity, plain);
    EXPECT_EQ(target.Get(globals + 2, entity), KARUnchanged);
    EXPECT_EQ(target.Get(key1, key2, entity), KARSuccess);
    EXPECT_EQ(entity, filed);
    QOBSharedVector<TypeParam> entities;
    EXPECT_EQ(target.Get(key1, key2, entities), KARSuccess);
    EXPECT_EQ(entities, QOBSharedVector<TypeParam>{filed});

    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(target.GetKeys(filed, first, second), KARSuccess);
    EXPECT_EQ(first, key1);
    EXPECT_EQ(second, key2);
    EXPECT_EQ(target.GetKeys(plain, first, second), KARUnchanged);
    EXPECT_EQ(first, nullptr);

    EXPECT_EQ(target.Remove(plain), KARSuccess);
    EXPECT_EQ(target.Remove(plain), KARUnchanged);
    EXPECT_EQ(target.template EmptyRegistry<TypeParam>(), KARSuccess);
    EXPECT_EQ(target.template Count<TypeParam>(), 0);
}

TYPED_TEST(FamilyOfAWorld, GivesKeysByTheClassOfTheEntity)
{
    constexpr bool IsInteraction = std::is_same_v<TypeParam, KARMPInteraction>;
    const auto key1 = WorldTestKey::Make();
    const auto key2 = WorldTestKey::Make();
    const auto filed = TestOf<TypeParam>::create(L"filed");
    const auto plain = TestOf<TypeParam>::create(L"plain");
    this->world->Add(key1, key2, filed);
    this->world->Add(plain);

    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    const QOBSharedHandle<QOBBasicEntity> untypedFiled(filed);
    EXPECT_EQ(this->world->GetKeys(untypedFiled, first, second),
              IsInteraction ? KARFailure : KARSuccess);
    EXPECT_EQ(first, IsInteraction ? KARBaseUnknown_var() : key1);
    EXPECT_EQ(second, IsInteraction ? KARBaseUnknown_var() : key2);
    const QOBSharedHandle<QOBBasicEntity> untypedPlain(plain);
    EXPECT_EQ(this->world->GetKeys(untypedPlain, first, second),
              IsInteraction ? KARFailure : KARUnchanged);
    EXPECT_EQ(first, nullptr);
}

TEST_F(WorldRegistries, HasNoKeysForWhatIsNoFamily)
{
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(world->GetKeys(QOBSharedHandle<QOBBasicEntity>(basicWorld), first, second),
              KARFailure);
    EXPECT_EQ(
        world->GetKeys(QOBSharedHandle<QOBBasicEntity>(TestEntity::create(L"")), first, second),
        KARFailure);
    EXPECT_EQ(world->GetKeys(QOBSharedHandle<QOBBasicEntity>(), first, second), KARFailure);
}

} // namespace
