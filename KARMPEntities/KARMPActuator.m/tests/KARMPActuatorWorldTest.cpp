// Actuators in a world: the values that they make, the document, the end.
#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPConstant.h"
#include "KARMPDisplacementActuator.h"
#include "KARMPDriver.h"
#include "KARMPExpression.h"
#include "KARMPJointForceActuator.h"
#include "KARMPJointKinds.h"
#include "KARMPMotor.h"
#include "KARMPSerializationServices.h"
#include "KARMPSpatialForceActuator.h"
#include "KARMPSpatialForceActuator2D.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARWBFactory.h"
#include "QOBBasicWorld.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

/// A world with a body, a joint and its variable, and an actuator of each kind that acts on them.
class ActuatorWorld : public KARMPTestFixture
{
protected:
    template <class T, class Family>
    QOBSharedHandle<T> Add(const wchar_t* identifier)
    {
        const QOBSharedHandle<T> entity = T::create(identifier);
        entity->SetIdentifier(identifier);
        basicWorld->addLogicalChild(entity);
        EXPECT_EQ(world->Add<Family>(QOBSharedHandle<Family>(entity)), KARSuccess);
        return entity;
    }
    ActuatorWorld()
    {
        body = Add<KARMPBody, KARMPBody>(L"body");
        joint = Add<KARMPRevolute, KARMPJoint>(L"joint");
        variable = Add<KARMPVariable, KARMPVariable>(L"angle");
        variable->SetPhysicalQuantity(KARMPPhysicalQuantity::Angle);
        motor = Add<KARMPMotor, KARMPActuator>(L"motor");
        driver = Add<KARMPDriver, KARMPActuator>(L"driver");
        moved = Add<KARMPDisplacementActuator, KARMPActuator>(L"moved");
        torque = Add<KARMPJointForceActuator, KARMPActuator>(L"torque");
        force = Add<KARMPSpatialForceActuator, KARMPActuator>(L"force");
        planar = Add<KARMPSpatialForceActuator2D, KARMPActuator>(L"planar");

        KARWBEquation* equation = nullptr;
        EXPECT_EQ(
            KARMPSerializationServices::ParseWBEquation(L"0.5 * GlobalTime", &factory, equation),
            KARSuccess);
        motor->SetVariable(variable);
        motor->SetPosition(&factory);
        motor->SetMaxForce(12.5);
        driver->AddMotor(motor);
        moved->SetBody(body);
        QOBSharedHandle<KARMPValue> limit;
        motor->GetMaxForce(limit);
        torque->SetForce(limit);
        torque->SetJoint(joint);
        force->SetBody(body);
        force->SetForce(KARMathVector(1.0, 2.0, 3.0));
        planar->SetTorque(4.0);
    }

    KARWBFactory factory;
    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPRevolute> joint;
    QOBSharedHandle<KARMPVariable> variable;
    QOBSharedHandle<KARMPMotor> motor;
    QOBSharedHandle<KARMPDriver> driver;
    QOBSharedHandle<KARMPDisplacementActuator> moved;
    QOBSharedHandle<KARMPJointForceActuator> torque;
    QOBSharedHandle<KARMPSpatialForceActuator> force;
    QOBSharedHandle<KARMPSpatialForceActuator2D> planar;
};

template <class T>
QOBSharedHandle<T> Find(const KARMPWorld& world, const wchar_t* identifier)
{
    for (int i = 0; i < world.Count<KARMPActuator>(); ++i) {
        QOBSharedHandle<KARMPActuator> actuator;
        world.Get(i, actuator);
        std::wstring found;
        actuator->GetIdentifier(found);
        if (found == identifier)
            return QOBSharedHandle<T>(actuator);
    }
    return {};
}

TEST_F(ActuatorWorld, ComesBackFromADocumentWithTheValuesThatActuatorsMade)
{
    EXPECT_EQ(world->Count<KARMPValue>(), 6);
    TestSerializer root;
    ASSERT_EQ(world->Serialize(&root), KARSuccess);
    const auto tree = TestDeserializer::From(root, {.versionOnEveryNode = true});
    const auto readBasic = QOBBasicWorld::create(L"read");
    const auto read = KARMPWorld::create(readBasic);
    ASSERT_EQ(read->Deserialize(tree.get()), KARSuccess);
    EXPECT_EQ(read->Count<KARMPActuator>(), 6);
    EXPECT_EQ(read->Count<KARMPValue>(), 6);

    const auto readMotor = Find<KARMPMotor>(*read, L"motor");
    ASSERT_TRUE(readMotor);
    double number = 0.0;
    EXPECT_EQ(readMotor->GetMaxForce(number), KARSuccess);
    EXPECT_EQ(number, 12.5);
    QOBSharedHandle<KARMPValue> position;
    EXPECT_EQ(readMotor->GetPosition(position), KARSuccess);
    const QOBSharedHandle<KARMPExpression> expression(position);
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(expression->GetValue(equation), KARSuccess);
    QOBSharedHandle<KARMPVariable> time;
    read->GetGlobalTime(time);
    QOBSharedHandle<KARMPVariable> linked;
    EXPECT_EQ(expression->GetLinkedVariable(0, linked), KARSuccess);
    EXPECT_EQ(linked, time);

    QOBSharedHandle<KARMPMotor> driven;
    EXPECT_EQ(Find<KARMPDriver>(*read, L"driver")->GetMotor(0, driven), KARSuccess);
    EXPECT_EQ(driven, readMotor);
    QOBSharedHandle<KARMPValue> shared;
    EXPECT_EQ(Find<KARMPJointForceActuator>(*read, L"torque")->GetForce(shared), KARSuccess);
    QOBSharedHandle<KARMPValue> limit;
    readMotor->GetMaxForce(limit);
    EXPECT_EQ(shared, limit) << "two owners share it";
    KARMathVector vector;
    EXPECT_EQ(Find<KARMPSpatialForceActuator>(*read, L"force")->GetForce(vector), KARSuccess);
    EXPECT_EQ(vector, KARMathVector(1.0, 2.0, 3.0));
    EXPECT_EQ(Find<KARMPSpatialForceActuator2D>(*read, L"planar")->GetTorque(number), KARSuccess);
    EXPECT_EQ(number, 4.0);
}

TEST_F(ActuatorWorld, EndsBeforeItsActuators)
{
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(driver->GetMotorsCount(), 0);
    QOBSharedHandle<KARMPVariable> driven;
    EXPECT_EQ(motor->GetVariable(driven), KARFailure);
    EXPECT_EQ(variable->getReferenceCount(), 1U);
    // A class that prescribes no teardown keeps what it acts on.
    QOBSharedHandle<KARMPBody> found;
    EXPECT_EQ(moved->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
}

TEST_F(ActuatorWorld, EndsAfterTheEntitiesThatItsActuatorsActOn)
{
    KARMPVariable::destroy(variable);
    QOBSharedHandle<KARMPBody>(body)->orphanObject();
    body = nullptr;
    joint = nullptr;
    motor = nullptr;
    EXPECT_EQ(world->EmptyWorld(), KARSuccess);
    EXPECT_EQ(force->SetForce(KARMathVector(4.0, 5.0, 6.0)), KARSuccess);
    EXPECT_EQ(world->Count<KARMPValue>(), 3) << "the actuator still stands under the basic world";
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(force->SetForce(KARMathVector(7.0, 8.0, 9.0)), KARSuccess);
    KARMathVector vector;
    EXPECT_EQ(force->GetForce(vector), KARSuccess);
    EXPECT_EQ(vector, KARMathVector(7.0, 8.0, 9.0));
}

TEST_F(ActuatorWorld, FreesAllActuatorsWithItself)
{
    const auto counted = ConcreteEntity<KARMPMotor>::create(L"counted");
    {
        QOBSharedHandle<ConcreteEntity<KARMPMotor>> inWorld =
            ConcreteEntity<KARMPMotor>::create(L"in");
        basicWorld->addLogicalChild(inWorld);
        world->Add<KARMPActuator>(inWorld);
        driver->AddMotor(inWorld);
        inWorld->SetVariable(variable);
    }
    EXPECT_EQ(ConcreteEntity<KARMPMotor>::Alive(), 2);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_EQ(ConcreteEntity<KARMPMotor>::Alive(), 1);
}

} // namespace
