#include "ConcreteEntity.h"
#include "KARMPConstant.h"
#include "KARMPDriver.h"
#include "KARMPEntityTable.h"
#include "KARMPMotor.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "QOBException.h"
#include "RecordingActuatorLoaders.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Target = KARMPMotorTargetType;
using Value = QOBSharedHandle<KARMPValue>;

/// A motor with entities that a document may refer to.
class MotorTree : public KARMPTestFixture
{
protected:
    using Motor = QOBSharedHandle<KARMPMotor>;

    MotorTree()
    {
        variable->SetIdentifier(L"v");
        value->SetIdentifier(L"k");
        motor->SetIdentifier(L"m");
        entities.Set(L"v", variable);
        entities.Set(L"k", value);
        entities.Set(L"m", motor);
    }
    static TestDeserializer& Plain(TestDeserializer& root, const wchar_t* element = L"Motor")
    {
        return root.Add(element)
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    KARMPEntityTable entities;
    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    const Value value = KARMPConstant::create(L"k");
    const Motor motor = KARMPMotor::create(L"m");
    const Motor read = KARMPMotor::create(L"");
};

TEST_F(MotorTree, HoldsVariableTargetTypeAndValuesInOrder)
{
    motor->SetVariable(variable);
    motor->SetMaxForce(value);
    motor->SetAcceleration(value);
    motor->SetVelocity(value);
    motor->SetPosition(value);
    TestSerializer root;
    EXPECT_EQ(motor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"Motor");
    const wchar_t* const names[] = {L"Variable", L"TargetType",   L"Position",
                                    L"Velocity", L"Acceleration", L"MaxForce"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Text(L"Variable/@id"), L"v");
    EXPECT_EQ(element.Text(L"Variable/@name"), L"v");
    EXPECT_EQ(element.Text(L"TargetType"), L"AccelerationTarget");
    EXPECT_EQ(element.Text(L"MaxForce/@id"), L"k");
    EXPECT_EQ(element.Text(L"MaxForce/@name"), L"k");

    for (const bool asText : {false, true}) {
        const Motor back = KARMPMotor::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(back->Deserialize(tree.get(), entities), KARSuccess);
        QOBSharedHandle<KARMPVariable> found;
        EXPECT_EQ(back->GetVariable(found), KARSuccess);
        EXPECT_EQ(found, variable);
        Value force;
        EXPECT_EQ(back->GetMaxForce(force), KARSuccess);
        EXPECT_EQ(force, value);
        EXPECT_EQ(back->GetTargetType(), Target::AccelerationTarget);
    }
}

TEST_F(MotorTree, HoldsTheTargetTypeAloneOfANewMotor)
{
    TestSerializer root;
    EXPECT_EQ(motor->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.Child(0).GetElementCount(), 1U);
    EXPECT_EQ(root.Text(L"Motor/TargetType"), L"NotSpecified");
    motor->SetTargetType(static_cast<Target::Enum>(7));
    EXPECT_EQ(motor->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Motor[1]/TargetType"), L"NotSpecified");
}

TEST_F(MotorTree, CombinesTheTargetTypeThatIsReadWithThoseOfTheValues)
{
    TestDeserializer root;
    Plain(root).Leaf(L"TargetType", L"PositionTarget").Add(L"Velocity").Attribute(L"id", L"k");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(read->GetTargetType(), Target::AccelerationTarget);
    TestDeserializer unknown;
    Plain(unknown).Leaf(L"TargetType", L"anything").Add(L"Velocity").Attribute(L"id", L"k");
    EXPECT_EQ(KARMPMotor::create(L"")->Deserialize(&unknown, entities), KARSuccess);
    const Motor other = KARMPMotor::create(L"");
    EXPECT_EQ(other->Deserialize(&unknown, entities), KARSuccess);
    EXPECT_EQ(other->GetTargetType(), Target::VelocityTarget);
}

TEST_F(MotorTree, FailsWithoutATargetTypeAfterReadingTheRest)
{
    TestDeserializer root;
    Plain(root).Add(L"Position").Attribute(L"id", L"k");
    EXPECT_EQ(read->Deserialize(&root, entities), KARFailure);
    ExpectReports(1);
    Value found;
    EXPECT_EQ(read->GetPosition(found), KARSuccess);
}

TEST_F(MotorTree, FailsWhenAValueIsUnknownOrRefused)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root).Leaf(L"TargetType", L"PositionTarget");
    element.Add(L"Position").Attribute(L"id", L"nobody");
    element.Add(L"Velocity").Attribute(L"id", L"k");
    EXPECT_EQ(read->Deserialize(&root, entities), KARFailure);
    EXPECT_GE(TakeReports(), 1U);
    Value found;
    EXPECT_EQ(read->GetPosition(found), KARFailure);
    EXPECT_EQ(read->GetVelocity(found), KARSuccess);

    TestDeserializer second;
    Plain(second).Leaf(L"TargetType", L"PositionTarget").Add(L"Position").Attribute(L"id", L"k");
    LoaderRecord record;
    const Motor refused = KARMPMotor::create(L"");
    auto* loader = new RecordingMotorLoader(record);
    refused->SetLoader(loader);
    record.answer = KARFailure;
    EXPECT_EQ(refused->Deserialize(&second, entities), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(record.calls, std::vector<std::string>{"SetPosition"});
}

TEST_F(MotorTree, PassesOverAnUnknownVariableAndThrowsForAnotherClass)
{
    TestDeserializer root;
    Plain(root).Leaf(L"TargetType", L"PositionTarget").Add(L"Variable").Attribute(L"id", L"none");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(read->GetLinkedVariableCount(), 0);
    TestDeserializer wrong;
    Plain(wrong).Leaf(L"TargetType", L"PositionTarget").Add(L"Variable").Attribute(L"id", L"k");
    EXPECT_THROW(KARMPMotor::create(L"")->Deserialize(&wrong, entities), QOBEInvalidCast);
    TestDeserializer withoutId;
    Plain(withoutId).Leaf(L"TargetType", L"PositionTarget").Add(L"Variable");
    EXPECT_EQ(KARMPMotor::create(L"")->Deserialize(&withoutId, entities), KARSuccess);
    ExpectReports(1);
}

TEST_F(MotorTree, DoesNotCountAVariableThatCannotBeWritten)
{
    motor->SetVariable(variable);
    motor->SetPosition(value);
    std::vector<KARStatus> statuses;
    for (std::size_t failing = 1; failing <= 5; ++failing) {
        TestSerializer root;
        root.FailCreation(failing);
        statuses.push_back(motor->Serialize(&root));
        EXPECT_EQ(TakeReports() == 0, failing == 5);
    }
    // The elements of the class, the variable, the target type and the position.
    EXPECT_EQ(statuses,
              (std::vector<KARStatus>{KARFailure, KARSuccess, KARFailure, KARFailure, KARSuccess}));
}

TEST_F(MotorTree, FailsWithoutANodeOrItsElement)
{
    EXPECT_EQ(motor->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(read->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
    const TestDeserializer empty;
    EXPECT_EQ(read->Deserialize(&empty, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(MotorTree, WritesAndReadsItsValuesByName)
{
    TestSerializer root;
    EXPECT_EQ(motor->SerializeValue(nullptr, L"Position"), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(motor->SerializeValue(&root, L"Position"), KARUnchanged);
    motor->SetPosition(value);
    EXPECT_EQ(motor->SerializeValue(&root, L"Velocity"), KARUnchanged);
    EXPECT_EQ(motor->SerializeValue(&root, L"position"), KARUnchanged);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(motor->SerializeValue(&root, L"Position"), KARSuccess);
    EXPECT_EQ(root.Text(L"Position/@id"), L"k");
    TestSerializer failing;
    failing.FailCreation(1);
    EXPECT_EQ(motor->SerializeValue(&failing, L"Position"), KARFailure);
    ExpectReports(4); // the node, both forms of the services, and the motor

    TestDeserializer tree;
    tree.Add(L"MaxForce").Attribute(L"id", L"k");
    tree.Add(L"Velocity").Attribute(L"id", L"nobody");
    tree.Add(L"Other").Attribute(L"id", L"k");
    EXPECT_EQ(read->DeserializeValue(nullptr, L"MaxForce", entities), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(read->DeserializeValue(&tree, L"Position", entities), KARUnchanged);
    EXPECT_EQ(read->DeserializeValue(&tree, L"Other", entities), KARUnchanged);
    EXPECT_EQ(read->DeserializeValue(&tree, L"Velocity", entities), KARFailure);
    ExpectReports(2); // the services' form for one value, and the motor
    EXPECT_EQ(read->DeserializeValue(&tree, L"MaxForce", entities), KARSuccess);
    Value found;
    EXPECT_EQ(read->GetMaxForce(found), KARSuccess);
    EXPECT_EQ(found, value);
}

class DriverTest : public MotorTree
{
protected:
    const QOBSharedHandle<ConcreteEntity<KARMPDriver>> driver =
        ConcreteEntity<KARMPDriver>::create(L"d");
    const Motor second = [] {
        const Motor made = KARMPMotor::create(L"second");
        made->SetIdentifier(L"s");
        return made;
    }();
};

TEST_F(DriverTest, ListsEachMotorOnce)
{
    Motor found = motor;
    EXPECT_EQ(driver->GetMotor(0, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(driver->AddMotor({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(driver->AddMotor(second), KARSuccess);
    EXPECT_EQ(driver->AddMotor(motor), KARSuccess);
    EXPECT_EQ(driver->AddMotor(second), KARUnchanged);
    EXPECT_EQ(driver->GetMotorsCount(), 2);
    EXPECT_EQ(driver->GetMotor(0, found), KARSuccess);
    EXPECT_EQ(found, second);
    for (const int index : {-1, 2}) {
        found = motor;
        EXPECT_EQ(driver->GetMotor(index, found), KARFailure);
        EXPECT_FALSE(found);
    }
    EXPECT_EQ(driver->copy()->GetMotorsCount(), 0);
    driver->orphanObject();
    EXPECT_EQ(driver->GetMotorsCount(), 0);
}

TEST_F(DriverTest, WritesNothingWithoutMotors)
{
    TestSerializer root;
    EXPECT_EQ(driver->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetId(), L"Driver");
    EXPECT_EQ(root.Child(0).GetElementCount(), 0U);
    const QOBSharedHandle<KARMPDriver> back = KARMPDriver::create(L"");
    EXPECT_EQ(back->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(back->GetMotorsCount(), 0);
    TestDeserializer empty;
    Plain(empty, L"Driver").Add(L"AttachedMotors");
    EXPECT_EQ(KARMPDriver::create(L"")->Deserialize(&empty, entities), KARSuccess);
}

TEST_F(DriverTest, WritesItsMotorsInOrderAndReadsThemBack)
{
    entities.Set(L"s", second);
    driver->AddMotor(second);
    driver->AddMotor(motor);
    TestSerializer root;
    EXPECT_EQ(driver->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Driver/AttachedMotors/Motor/@id"), L"s");
    EXPECT_EQ(root.Text(L"Driver/AttachedMotors/Motor/@name"), L"second");
    EXPECT_EQ(root.Text(L"Driver/AttachedMotors/Motor[1]/@id"), L"m");
    const QOBSharedHandle<KARMPDriver> back = KARMPDriver::create(L"");
    EXPECT_EQ(back->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ASSERT_EQ(back->GetMotorsCount(), 2);
    Motor found;
    back->GetMotor(0, found);
    EXPECT_EQ(found, second);
}

} // namespace
