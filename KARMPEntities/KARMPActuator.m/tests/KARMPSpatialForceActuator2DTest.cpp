#include "KARMPSpatialForceActuator2D.h"
#include "ConcreteEntity.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPExpression.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "RecordingActuatorLoaders.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Calls = std::vector<std::string>;
using Value = QOBSharedHandle<KARMPValue>;

/// A planar force that cannot tell whether it is in a world.
class LostPlanarForce : public KARMPSpatialForceActuator2D
{
public:
    KARStatus IsInWorld(bool&) const override { return KARUnexpected; }
};

/// A planar force in a world, with a loader.
class PlanarForceActuator : public KARMPTestFixture
{
protected:
    using Force = KARMPSpatialForceActuator2D::ForceComponents;
    using Torque = KARMPSpatialForceActuator2D::TorqueComponents;

    PlanarForceActuator()
    {
        basicWorld->addLogicalChild(actuator);
        actuator->SetLoader(loader);
        for (const wchar_t* name : {L"k", L"l"}) {
            const auto constant = KARMPConstant::create(name);
            constant->SetIdentifier(name);
            entities.Set(name, constant);
            values.emplace_back(constant);
        }
    }
    ~PlanarForceActuator() override
    {
        loader->force = {};
        loader->torque = {};
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    LoaderRecord record;
    KARMPEntityTable entities;
    std::vector<Value> values;
    QOBSharedHandle<ConcreteEntity<KARMPSpatialForceActuator2D>> actuator =
        ConcreteEntity<KARMPSpatialForceActuator2D>::create(L"a");
    RecordingSpatialForceActuator2DLoader* loader =
        new RecordingSpatialForceActuator2DLoader(record);
};

TEST_F(PlanarForceActuator, MakesConstantsOfAVector)
{
    EXPECT_EQ(actuator->SetForce(KARMathVector2D(1.0, 2.0)), KARSuccess);
    EXPECT_EQ(record.calls, Calls{"SetForce"});
    EXPECT_EQ(world->Count<KARMPValue>(), 2);
    KARMathVector2D force;
    EXPECT_EQ(actuator->GetForce(force), KARSuccess);
    EXPECT_EQ(force, KARMathVector2D(1.0, 2.0));
    Force own;
    EXPECT_EQ(actuator->GetForce(own), KARSuccess);
    EXPECT_EQ(loader->force, own);
    KARMPPhysicalQuantity::Enum quantity = {};
    own[0]->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, KARMPPhysicalQuantity::Force);
}

TEST_F(PlanarForceActuator, ReportsEachConstantThatIsNotMadeWhole)
{
    const QOBSharedHandle<KARMPSpatialForceActuator2D> lost(new LostPlanarForce);
    EXPECT_EQ(lost->SetForce(KARMathVector2D(1.0, 2.0)), KARSuccess);
    ExpectReports(4); // the search of the world and the actuator, of each component
    EXPECT_EQ(lost->SetTorque(4.5), KARSuccess);
    ExpectReports(2);
}

TEST_F(PlanarForceActuator, ReusesTheConstantOfItsTorque)
{
    EXPECT_EQ(actuator->SetTorque(4.5), KARSuccess);
    Torque own;
    EXPECT_EQ(actuator->GetTorque(own), KARSuccess);
    EXPECT_EQ(loader->torque, own);
    KARMPPhysicalQuantity::Enum quantity = {};
    own[0]->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, KARMPPhysicalQuantity::Torque);
    EXPECT_EQ(actuator->SetTorque(5.5), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"SetTorque", "SetTorque"}));
    EXPECT_EQ(loader->torque, own);
    EXPECT_EQ(world->Count<KARMPValue>(), 1);
    double torque = 0.0;
    EXPECT_EQ(actuator->GetTorque(torque), KARSuccess);
    EXPECT_EQ(torque, 5.5);

    actuator->SetTorque(Torque{KARMPExpression::create(L"e")});
    EXPECT_EQ(actuator->GetTorque(torque), KARFailure);
    EXPECT_EQ(torque, 0.0);
    ExpectReports(2);
    EXPECT_EQ(actuator->SetTorque(6.5), KARSuccess);
    EXPECT_EQ(actuator->GetTorque(torque), KARSuccess);
    EXPECT_EQ(torque, 6.5);
    EXPECT_EQ(world->Count<KARMPValue>(), 2);
}

TEST_F(PlanarForceActuator, KeepsATorqueInNoRegistryOutsideAWorld)
{
    const auto outside = KARMPSpatialForceActuator2D::create(L"outside");
    EXPECT_EQ(outside->SetTorque(4.5), KARSuccess);
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(PlanarForceActuator, WithANullValueChangesNothingButTellsItsLoader)
{
    const Force force{values[0], values[1]};
    EXPECT_EQ(actuator->SetForce(force), KARSuccess);
    EXPECT_EQ(actuator->SetTorque(Torque{values[0]}), KARSuccess);
    record.calls.clear();
    EXPECT_EQ(actuator->SetForce(Force{values[1], nullptr}), KARSuccess);
    EXPECT_EQ(actuator->SetTorque(Torque()), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(record.calls, (Calls{"SetForce", "SetTorque"}));
    EXPECT_EQ(loader->force, force);
    EXPECT_EQ(loader->torque[0], values[0]);
}

TEST_F(PlanarForceActuator, KeepsItsApplicationPointAsItIs)
{
    KARMathPoint2D point(9.0, 9.0);
    EXPECT_EQ(actuator->GetApplicationPoint(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint2D());
    EXPECT_EQ(actuator->SetApplicationPoint({1.0, 2.0}), KARSuccess);
    EXPECT_EQ(loader->point, KARMathPoint2D(1.0, 2.0));
    EXPECT_EQ(actuator->GetApplicationPoint(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint2D(1.0, 2.0));
}

TEST_F(PlanarForceActuator, KeepsWhatItsLoaderRefuses)
{
    record.answer = KARUnexpected;
    EXPECT_EQ(actuator->SetForce(Force{values[0], values[1]}), KARFailure);
    EXPECT_EQ(actuator->SetTorque(1.5), KARFailure);
    EXPECT_EQ(actuator->SetApplicationPoint({1.0, 2.0}), KARFailure);
    ExpectReports(3);
    double torque = 0.0;
    EXPECT_EQ(actuator->GetTorque(torque), KARSuccess);
    EXPECT_EQ(torque, 1.5);
    record.answer = KARUnchanged;
    EXPECT_EQ(actuator->SetTorque(1.5), KARSuccess);
    actuator->failsToFetch = true;
    EXPECT_EQ(actuator->SetTorque(1.5), KARFailure);
    ExpectReports(2);
    const auto bare = KARMPSpatialForceActuator2D::create(L"bare");
    bare->SetLoader(new RecordingEntityLoader(record));
    EXPECT_EQ(bare->SetTorque(1.5), KARSuccess);
    KARIMPSpatialForceActuator2DLoader* own = nullptr;
    EXPECT_EQ(bare->GetLoader(own), KARSuccess);
    EXPECT_EQ(own, nullptr);
}

TEST_F(PlanarForceActuator, CopiesPointAndFlagAlone)
{
    actuator->SetTorque(4.5);
    actuator->SetApplicationPoint({1.0, 2.0});
    actuator->SetIsInLocalFrame(true);
    const auto copy = actuator->copy();
    Torque torque;
    copy->GetTorque(torque);
    EXPECT_FALSE(torque[0]);
    KARMathPoint2D point;
    copy->GetApplicationPoint(point);
    EXPECT_EQ(point, KARMathPoint2D(1.0, 2.0));
    bool isLocal = false;
    copy->IsInLocalFrame(isLocal);
    EXPECT_TRUE(isLocal);
}

TEST_F(PlanarForceActuator, ComesBackFromADocument)
{
    actuator->SetForce(Force{values[0], values[1]});
    actuator->SetTorque(Torque{values[1]});
    actuator->SetIsInLocalFrame(true);
    actuator->SetApplicationPoint({3.0, 4.0});
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"SpatialForceActuator2D");
    const wchar_t* const names[] = {L"Force2D", L"Torque2D", L"IsInLocalFrame",
                                    L"ApplicationPoint2D"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Text(L"Force2D/Vy/@id"), L"l");
    EXPECT_EQ(element.Text(L"Torque2D/Vx/@name"), L"l");
    EXPECT_EQ(element.Number(L"ApplicationPoint2D/Py"), 4.0);
    for (const bool asText : {false, true}) {
        const auto read = KARMPSpatialForceActuator2D::create(L"");
        auto* const told = new RecordingSpatialForceActuator2DLoader(record);
        read->SetLoader(told);
        record.calls.clear();
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        EXPECT_EQ(record.calls, (Calls{"SetForce", "SetTorque", "SetApplicationPoint"}));
        EXPECT_EQ(told->point, KARMathPoint2D(3.0, 4.0));
        told->force = {};
        told->torque = {};
        Force force;
        read->GetForce(force);
        EXPECT_EQ(force, (Force{values[0], values[1]}));
        Torque torque;
        read->GetTorque(torque);
        EXPECT_EQ(torque[0], values[1]);
        bool isLocal = false;
        EXPECT_EQ(read->IsInLocalFrame(isLocal), KARSuccess);
        EXPECT_TRUE(isLocal);
        KARMathPoint2D point;
        read->GetApplicationPoint(point);
        EXPECT_EQ(point, KARMathPoint2D(3.0, 4.0));
    }
}

TEST_F(PlanarForceActuator, IsEmptyWithoutValuesAndReportsWhatIsMissing)
{
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).Child(0).GetElementCount(), 0U);
    EXPECT_EQ(root.Child(0).Child(1).GetElementCount(), 0U);
    EXPECT_EQ(actuator->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    TestDeserializer missing;
    missing.Add(L"SpatialForceActuator2D")
        .Attribute(L"id", L"a")
        .Attribute(L"name", L"r")
        .Attribute(L"isActive", L"yes");
    const auto read = KARMPSpatialForceActuator2D::create(L"");
    EXPECT_EQ(read->Deserialize(&missing, entities), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(read->Serialize(nullptr), KARFailure);
    EXPECT_EQ(read->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(2);
}

} // namespace
