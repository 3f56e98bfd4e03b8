#include "KARMPAxisSystem.h"
#include "KARWBFactory.h"
#include "ModelObject.h"
#include "QOBException.h"
#include "TestEntity.h"
#include "WorldTesting.h"

namespace {

// Tells whether an agent still lives, without holding it.
QOBNotificationFunctor Probe(QOBNotificationAgent& agent)
{
    return {agent, [](auto, auto) {}};
}

QOBSharedHandle<KARMPBody> GlobalBody(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPBody> body;
    EXPECT_EQ(world.GetGlobalBody(body), KARSuccess);
    return body;
}

QOBSharedHandle<KARMPAxisSystem> GlobalAxisSystem(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    EXPECT_EQ(world.GetGlobalAxisSystem(axisSystem), KARSuccess);
    return axisSystem;
}

QOBSharedHandle<KARMPVariable> GlobalTime(const KARMPWorld& world)
{
    QOBSharedHandle<KARMPVariable> time;
    EXPECT_EQ(world.GetGlobalTime(time), KARSuccess);
    return time;
}

class World : public WorldFixture
{};

TEST_F(World, KnowsItsClass)
{
    EXPECT_EQ(KARMPWorld::ClassName(), "KARMPWorld");
    EXPECT_EQ(world->getClassName(), "KARMPWorld");
    EXPECT_EQ(KARMPWorld::ClassID().getText(), "55300D4C-9209-42f6-B898-33199D1A691B");
    EXPECT_EQ(&world->getClassID(), &KARMPWorld::ClassID());
    EXPECT_EQ(&world->getClassInfo(), &KARMPWorld::ClassInfo());
    EXPECT_TRUE(world->isDerivedFrom(QOBExtensionObject::ClassInfo()));
    EXPECT_TRUE(world->isInstanceOf(KARMPWorld::ClassInfo()));
    EXPECT_FALSE(world->isInstanceOf(QOBExtensionObject::ClassInfo()));
    EXPECT_FALSE(world->isDerivedFrom(KARMPEntity::ClassInfo()));
}

TEST_F(World, IsTheOneClassWithACreationFunction)
{
    const QOBCreateFunction create = KARMPWorld::ClassInfo().getCreateFunction();
    ASSERT_NE(create, nullptr);
    QOBSharedObject* made = create();
    EXPECT_EQ(made->getReferenceCount(), 1U);
    const QOBSharedHandle<KARMPWorld> other(made);
    made->removeReference();
    EXPECT_EQ(other->GetBodyCount(), 1);
    EXPECT_FALSE(other->getExtendible());
    EXPECT_EQ(KARMPBody::ClassInfo().getCreateFunction(), nullptr);
}

TEST_F(World, ExtendsItsBasicWorld)
{
    EXPECT_EQ(world->getExtendible(), basicWorld);
    EXPECT_TRUE(basicWorld->hasExtension(KARMPWorld::ClassID()));
    EXPECT_EQ(basicWorld->getExtension(KARMPWorld::ClassID()), world);
}

TEST_F(World, IsFoundFromTheEntitiesUnderItsBasicWorld)
{
    const auto entity = TestEntity::create(L"entity");
    basicWorld->addLogicalChild(entity);
    QOBSharedHandle<KARMPWorld> found;
    EXPECT_EQ(entity->GetWorld(found), KARSuccess);
    EXPECT_EQ(found, world);
}

TEST_F(World, ListsItsGlobalsAndNothingElse)
{
    karmp::Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        const bool hasGlobal = std::is_same_v<T, KARMPBody> || std::is_same_v<T, KARMPGeometry> ||
                               std::is_same_v<T, KARMPVariable>;
        EXPECT_EQ(world->Count<T>(), hasGlobal ? 1 : 0) << T::ClassName();
    });
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPGeometry> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world->Get(0, body);
    world->Get(0, axisSystem);
    world->Get(0, time);
    EXPECT_EQ(body, GlobalBody(*world));
    EXPECT_EQ(axisSystem, GlobalAxisSystem(*world));
    EXPECT_EQ(time, GlobalTime(*world));
}

TEST_F(World, MakesAFixedBodyThatCarriesAnAxisSystem)
{
    const auto body = GlobalBody(*world);
    EXPECT_EQ(body->getEntityName(), L"GlobalBody");
    EXPECT_TRUE(body->IsFixed());
    EXPECT_EQ(body->GetGeometryCount(), 1);
    QOBSharedHandle<KARMPGeometry> geometry;
    body->GetGeometry(0, geometry);
    EXPECT_EQ(geometry, GlobalAxisSystem(*world));
    EXPECT_EQ(geometry->getEntityName(), L"GlobalAxisSystem");
    QOBSharedHandle<KARMPBody> carrier;
    EXPECT_EQ(geometry->GetBody(carrier), KARSuccess);
    EXPECT_EQ(carrier, body);
}

TEST_F(World, MakesAVariableForTheTime)
{
    const auto time = GlobalTime(*world);
    EXPECT_EQ(time->getEntityName(), L"GlobalTime");
    EXPECT_EQ(time->GetPhysicalQuantity(), KARMPPhysicalQuantity::Time);
}

TEST_F(World, HasTheDefaultSettings)
{
    EXPECT_EQ(world->GetLinearTolerance(), 0.001);
    EXPECT_EQ(world->GetAngularTolerance(), 1e-09);
    KARMathPoint origin(1, 2, 3);
    EXPECT_EQ(world->GetOrigin(origin), KARSuccess);
    EXPECT_EQ(origin, KARMathPoint());
    double x = 0;
    double y = 0;
    double z = 0;
    EXPECT_EQ(world->GetSize(x, y, z), KARSuccess);
    EXPECT_EQ((std::array{x, y, z}), (std::array{1e6, 1e6, 1e6}));
    KARMathVector gravity(1, 2, 3);
    EXPECT_EQ(world->GetGravity(gravity), KARSuccess);
    EXPECT_EQ(gravity, KARMathVector());
    KARMPUnit::Enum unit = KARMPUnit::Foot;
    EXPECT_EQ(world->GetLengthUnit(unit), KARSuccess);
    EXPECT_EQ(unit, 1);
}

TEST_F(World, StoresSettingsAsTheyAre)
{
    world->SetLinearTolerance(-1);
    world->SetAngularTolerance(-2);
    world->SetOrigin({1, 2, 3});
    world->SetSize(-4, 5, 6);
    world->SetGravity({7, 8, 9});
    world->SetLengthUnit(KARMPUnit::Inch);
    EXPECT_EQ(world->GetLinearTolerance(), -1);
    EXPECT_EQ(world->GetAngularTolerance(), -2);
    KARMathPoint origin;
    world->GetOrigin(origin);
    EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
    double x = 0;
    double y = 0;
    double z = 0;
    world->GetSize(x, y, z);
    EXPECT_EQ((std::array{x, y, z}), (std::array{-4.0, 5.0, 6.0}));
    KARMathVector gravity;
    world->GetGravity(gravity);
    EXPECT_EQ(gravity, KARMathVector(7, 8, 9));
    KARMPUnit::Enum unit{};
    world->GetLengthUnit(unit);
    EXPECT_EQ(unit, KARMPUnit::Inch);
}

TEST_F(World, NumbersEntitiesFromThree)
{
    EXPECT_EQ(world->GetEntityId(), 3U);
    EXPECT_EQ(world->GetEntityId(), 4U);
    EXPECT_EQ(KARMPWorld::create(QOBBasicWorld::create(L"other"))->GetEntityId(), 3U);
}

TEST_F(World, HasNoGroundBodyAtFirst)
{
    QOBSharedHandle<KARMPBody> body = GlobalBody(*world);
    EXPECT_EQ(world->GetGroundBody(body), KARSuccess);
    EXPECT_FALSE(body);
}

TEST_F(World, TakesOtherGlobalsWithoutListingThem)
{
    const auto body = TestOf<KARMPBody>::create(L"B");
    const auto axisSystem = KARMPAxisSystem::create(L"axis system");
    const auto time = TestOf<KARMPVariable>::create(L"V");
    EXPECT_EQ(world->SetGlobalBody(body), KARSuccess);
    EXPECT_EQ(world->SetGlobalAxisSystem(axisSystem), KARSuccess);
    EXPECT_EQ(world->SetGlobalTime(time), KARSuccess);
    EXPECT_EQ(world->SetGroundBody(body), KARSuccess);
    EXPECT_EQ(GlobalBody(*world), body);
    EXPECT_EQ(GlobalAxisSystem(*world), axisSystem);
    EXPECT_EQ(GlobalTime(*world), time);
    QOBSharedHandle<KARMPBody> ground;
    world->GetGroundBody(ground);
    EXPECT_EQ(ground, body);
    EXPECT_EQ(world->GetBodyCount(), 1);
    EXPECT_EQ(world->Count<KARMPGeometry>(), 1);
    EXPECT_EQ(world->Count<KARMPVariable>(), 1);
    world->SetGroundBody(nullptr);
    world->GetGroundBody(ground);
    EXPECT_FALSE(ground);
}

TEST_F(World, BorrowsItsLoader)
{
    ModelObject first;
    KARBaseUnknown* loader = &first;
    int kind = 7;
    EXPECT_EQ(world->GetLoader(loader, kind), KARUnchanged);
    EXPECT_EQ(loader, &first);
    EXPECT_EQ(kind, 7);

    EXPECT_EQ(world->SetLoader(&first, 5), KARSuccess);
    EXPECT_EQ(world->SetLoader(nullptr, 5), KARUnchanged);
    loader = nullptr;
    EXPECT_EQ(world->GetLoader(loader, kind), KARSuccess);
    EXPECT_EQ(loader, &first);
    EXPECT_EQ(kind, 5);
    EXPECT_EQ(world->SetLoader(nullptr, 0), KARSuccess);
    EXPECT_EQ(world->GetLoader(loader, kind), KARUnchanged);
    EXPECT_EQ(first.Added(), 0U);
    EXPECT_EQ(first.Released(), 0U);
}

TEST_F(World, CountsItsTable)
{
    ModelObject table;
    KARBaseUnknown* got = nullptr;
    EXPECT_EQ(world->GetTable(got), KARUnchanged);
    EXPECT_EQ(world->SetTable(nullptr), KARUnchanged);
    EXPECT_EQ(world->SetTable(&table), KARSuccess);
    EXPECT_EQ(table.Held(), 1U);
    EXPECT_EQ(world->GetTable(got), KARSuccess);
    EXPECT_EQ(got, &table);
    EXPECT_EQ(table.Held(), 2U);
    got->Release();
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(table.Held(), 0U);
}

TEST_F(World, KeepsTheReferenceOfATableThatIsReplaced)
{
    ModelObject first;
    ModelObject second;
    world->SetTable(&first);
    world->SetTable(&second);
    EXPECT_EQ(world->SetTable(nullptr), KARUnchanged);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(first.Held(), 1U);
    EXPECT_EQ(second.Held(), 0U);
}

TEST_F(World, OwnsAnEquationFactory)
{
    KARWBFactory* factory = nullptr;
    EXPECT_EQ(world->GetWBFactory(factory), KARSuccess);
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(factory->GetNbOfEquations(), 0);
}

TEST_F(World, PlacesAValueUnderItsBasicWorld)
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

TEST_F(World, PlacesNoOtherEntity)
{
    const auto body = TestOf<KARMPBody>::create(L"B");
    EXPECT_EQ(world->Add(body), KARSuccess);
    EXPECT_FALSE(basicWorld->hasLogicalChild(body));
}

TEST_F(World, ReportsAValueThatItCannotPlaceAndListsIt)
{
    const auto unbound = KARMPWorld::create(nullptr);
    EXPECT_EQ(unbound->Add(TestOf<KARMPValue>::create(L"V")), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(unbound->Count<KARMPValue>(), 1);
}

// A host that an extension can have but no entity can stand under.
class PlainHost : public QOBExtendibleObject
{
public:
    using QOBExtendibleObject::QOBExtendibleObject;
};

TEST_F(World, ThrowsWhenAValueCannotStandUnderItsHost)
{
    const auto unbound = KARMPWorld::create(nullptr);
    unbound->bindExtension(QOBSharedHandle<QOBExtendibleObject>(new PlainHost));
    EXPECT_THROW(unbound->Add(TestOf<KARMPValue>::create(L"V")), QOBEInvalidCast);
}

TEST_F(World, EmptiesItsRegistriesAndKeepsItsGlobals)
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

TYPED_TEST(FamilyOfAWorld, HandsOutKeysByTheClassOfTheEntity)
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

TEST_F(World, HasNoKeysForWhatIsNoFamily)
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

TEST_F(World, TakesItsGlobalsApartWhenDestroyed)
{
    const auto kept = world;
    const auto body = GlobalBody(*world);
    KARMPWorld::destroy(world);
    EXPECT_FALSE(world);
    EXPECT_TRUE(kept->isOrphaned());
    EXPECT_FALSE(GlobalAxisSystem(*kept));
    EXPECT_EQ(GlobalBody(*kept), body);
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(kept->Count<KARMPGeometry>(), 1);
}

TEST_F(World, IsTakenApartOnce)
{
    const auto kept = world;
    KARMPWorld::destroy(world);
    const auto axisSystem = KARMPAxisSystem::create(L"axis system");
    kept->SetGlobalAxisSystem(axisSystem);
    kept->orphanObject();
    EXPECT_EQ(GlobalAxisSystem(*kept), axisSystem);
}

TEST_F(World, LeavesAnAxisSystemWithoutABodyAlone)
{
    world->SetGlobalBody(nullptr);
    const auto axisSystem = GlobalAxisSystem(*world);
    world->orphanObject();
    EXPECT_EQ(GlobalAxisSystem(*world), axisSystem);
    EXPECT_FALSE(axisSystem->isOrphaned());
}

TEST_F(World, NothingHappensWhenANullHandleIsDestroyedOrCloned)
{
    QOBSharedHandle<KARMPWorld> none;
    KARMPWorld::destroy(none);
    EXPECT_FALSE(none);
    EXPECT_FALSE(KARMPWorld::clone(none, QOBDynamicObject::CopyShallow, basicWorld));
}

TEST_F(World, TakesItsGlobalsAlongWhenItDies)
{
    const auto body = Probe(*GlobalBody(*world));
    const auto axisSystem = Probe(*GlobalAxisSystem(*world));
    const auto time = Probe(*GlobalTime(*world));
    EXPECT_TRUE(body.isAlive());
    basicWorld = nullptr;
    EXPECT_TRUE(body.isAlive());
    world = nullptr;
    EXPECT_FALSE(body.isAlive());
    EXPECT_FALSE(axisSystem.isAlive());
    EXPECT_FALSE(time.isAlive());
}

TEST_F(World, TakesItsFirstGlobalsAlongWhenOthersAreInTheirPlace)
{
    const auto body = Probe(*GlobalBody(*world));
    const auto axisSystem = Probe(*GlobalAxisSystem(*world));
    world->EmptyWorld();
    world->SetGlobalBody(KARMPBody::create(L"body"));
    world->SetGlobalAxisSystem(KARMPAxisSystem::create(L"axis system"));
    EXPECT_TRUE(body.isAlive());
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_FALSE(body.isAlive());
    EXPECT_FALSE(axisSystem.isAlive());
}

TEST_F(World, TakesItsGlobalsAlongWhenItNeverExtendedAnything)
{
    auto unbound = KARMPWorld::create(nullptr);
    const auto axisSystem = Probe(*GlobalAxisSystem(*unbound));
    unbound = nullptr;
    EXPECT_FALSE(axisSystem.isAlive());
}

TEST_F(World, LeavesGlobalsThatAreHeldElsewhereAsTheyAre)
{
    auto unbound = KARMPWorld::create(nullptr);
    auto axisSystem = GlobalAxisSystem(*unbound);
    unbound = nullptr;
    QOBSharedHandle<KARMPBody> body;
    EXPECT_EQ(axisSystem->GetBody(body), KARSuccess);
    EXPECT_EQ(body->GetGeometryCount(), 1);
    KARMPAxisSystem::destroy(axisSystem);
}

class CopyOfAWorld : public WorldFixture
{
protected:
    QOBSharedHandle<KARMPWorld> copy() const
    {
        return KARMPWorld::clone(world, QOBDynamicObject::CopyShallow, otherBasicWorld);
    }

    QOBSharedHandle<QOBBasicWorld> otherBasicWorld = QOBBasicWorld::create(L"other");
};

TEST_F(CopyOfAWorld, ExtendsTheBasicWorldThatIsNamed)
{
    const auto other = copy();
    ASSERT_TRUE(other);
    EXPECT_NE(other, world);
    EXPECT_EQ(other->getExtendible(), otherBasicWorld);
    EXPECT_EQ(world->getExtendible(), basicWorld);
}

TEST_F(CopyOfAWorld, HasTheSettingsAndTheCount)
{
    world->SetLinearTolerance(1);
    world->SetAngularTolerance(2);
    world->SetOrigin({1, 2, 3});
    world->SetSize(4, 5, 6);
    world->SetGravity({7, 8, 9});
    world->GetEntityId();
    const auto other = copy();
    EXPECT_EQ(other->GetLinearTolerance(), 1);
    EXPECT_EQ(other->GetAngularTolerance(), 2);
    KARMathPoint origin;
    other->GetOrigin(origin);
    EXPECT_EQ(origin, KARMathPoint(1, 2, 3));
    double x = 0;
    double y = 0;
    double z = 0;
    other->GetSize(x, y, z);
    EXPECT_EQ((std::array{x, y, z}), (std::array{4.0, 5.0, 6.0}));
    KARMathVector gravity;
    other->GetGravity(gravity);
    EXPECT_EQ(gravity, KARMathVector(7, 8, 9));
    EXPECT_EQ(other->GetEntityId(), 4U);
    EXPECT_EQ(world->GetEntityId(), 4U);
}

TEST_F(CopyOfAWorld, HasNoSolverSideNoGroundBodyAndNoUnit)
{
    ModelObject table;
    ModelObject loader;
    world->SetTable(&table);
    world->SetLoader(&loader, 5);
    world->SetGroundBody(GlobalBody(*world));
    world->SetLengthUnit(KARMPUnit::Foot);
    const auto other = copy();
    KARBaseUnknown* got = nullptr;
    int kind = 0;
    EXPECT_EQ(other->GetTable(got), KARUnchanged);
    EXPECT_EQ(other->GetLoader(got, kind), KARUnchanged);
    QOBSharedHandle<KARMPBody> ground;
    other->GetGroundBody(ground);
    EXPECT_FALSE(ground);
    KARMPUnit::Enum unit = KARMPUnit::Foot;
    other->GetLengthUnit(unit);
    EXPECT_EQ(unit, KARMPUnit::Meter);
    EXPECT_EQ(table.Held(), 1U);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(table.Held(), 0U);
}

TEST_F(CopyOfAWorld, ListsTheSameEntitiesUnderTheSameKeys)
{
    const auto key = WorldTestKey::Make();
    const auto body = TestOf<KARMPBody>::create(L"B");
    const auto removed = TestOf<KARMPBody>::create(L"R");
    world->Add(key, key, body);
    world->Add(key, key, removed);
    world->Remove(removed);
    const auto other = copy();
    EXPECT_EQ(other->GetBodyCount(), 2);
    EXPECT_EQ(other->Count<KARMPGeometry>(), 1);
    EXPECT_EQ(other->Count<KARMPVariable>(), 1);
    KARBaseUnknown_var first;
    KARBaseUnknown_var second;
    EXPECT_EQ(other->GetKeys(body, first, second), KARSuccess);
    EXPECT_EQ(other->GetKeys(removed, first, second), KARUnchanged);
    QOBSharedVector<KARMPBody> bodies;
    EXPECT_EQ(other->Get(key, key, bodies), KARSuccess);
    EXPECT_EQ(bodies, (QOBSharedVector<KARMPBody>{body, removed}));
    world->EmptyWorld();
    EXPECT_EQ(other->GetBodyCount(), 2);
    EXPECT_EQ(GlobalBody(*other), GlobalBody(*world));
    EXPECT_EQ(GlobalAxisSystem(*other), GlobalAxisSystem(*world));
    EXPECT_EQ(GlobalTime(*other), GlobalTime(*world));
}

TEST_F(CopyOfAWorld, SharesTheEquationFactory)
{
    const auto other = copy();
    KARWBFactory* factory = nullptr;
    KARWBFactory* shared = nullptr;
    world->GetWBFactory(factory);
    EXPECT_EQ(other->GetWBFactory(shared), KARSuccess);
    EXPECT_EQ(shared, factory);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(other->GetWBFactory(shared), KARSuccess);
    EXPECT_EQ(shared->GetNbOfEquations(), 0);
}

TEST_F(CopyOfAWorld, IsMadeByTheObjectModelToo)
{
    const QOBSharedObject* made = world->duplicateObject(QOBDynamicObject::CopyShallow);
    EXPECT_EQ(made->getReferenceCount(), 1U);
    const QOBSharedHandle<KARMPWorld> duplicate(made);
    made->removeReference();
    EXPECT_EQ(GlobalBody(*duplicate), GlobalBody(*world));

    made = world->replicateObject();
    const QOBSharedHandle<KARMPWorld> replica(made);
    made->removeReference();
    EXPECT_NE(GlobalBody(*replica), GlobalBody(*world));
    EXPECT_FALSE(replica->getExtendible());
}

TEST_F(CopyOfAWorld, LetsTheGlobalsGoWithTheLastOfBoth)
{
    const auto axisSystem = Probe(*GlobalAxisSystem(*world));
    const QOBSharedObject* made = world->duplicateObject(QOBDynamicObject::CopyShallow);
    QOBSharedHandle<KARMPWorld> duplicate(made);
    made->removeReference();
    world->EmptyWorld();
    world->SetGlobalBody(nullptr);
    world->SetGlobalAxisSystem(nullptr);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_TRUE(axisSystem.isAlive());
    duplicate = nullptr;
    EXPECT_FALSE(axisSystem.isAlive());
}

} // namespace
