#include "KARMPAxisSystem.h"
#include "KARWBFactory.h"
#include "ModelObject.h"
#include "WorldTesting.h"

namespace {

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
