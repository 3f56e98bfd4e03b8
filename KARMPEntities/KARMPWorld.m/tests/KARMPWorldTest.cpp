#include "KARMPAxisSystem.h"
#include "KARWBFactory.h"
#include "ModelObject.h"
#include "TestEntity.h"
#include "WorldTesting.h"

namespace {

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

} // namespace
