// The sensors of the force and the torque in a joint and in a connector.
#include "KARMPEntityTable.h"
#include "MeasuringSensors.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <array>
#include <type_traits>

namespace {

const KARMathVector Force(1.0, 2.0, 3.0);
const KARMathVector Torque(4.0, 5.0, 6.0);

template <class Kind>
class SpatialForceSensor : public MeasuringSensor<Kind>
{
protected:
    using Sensor = typename Kind::Sensor;

    SpatialForceSensor() { this->sensor->SetSpatialForce(Force, Torque); }
    static void ExpectForce(const Sensor& one, const KARMathVector& force,
                            const KARMathVector& torque)
    {
        KARMathVector foundForce(9, 9, 9);
        KARMathVector foundTorque(9, 9, 9);
        EXPECT_EQ(one.GetSpatialForce(foundForce, foundTorque, KARMPAxisMode::World), KARSuccess);
        EXPECT_EQ(foundForce, force);
        EXPECT_EQ(foundTorque, torque);
    }
    KARStatus GetFrame(KARMathAxis& frame) const
    {
        if constexpr (requires { this->sensor->GetJointFrame(frame); })
            return this->sensor->GetJointFrame(frame);
        else
            return this->sensor->GetConnectorFrame(frame);
    }
    /// A frame whose directions are the world's second, third and first one.
    static KARMathAxis Turned() { return {{7, 8, 9}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}}; }
    void Attach()
    {
        this->record.frame = Turned();
        this->sensor->SetLoader(new typename Kind::Loader(this->record));
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(Kind::Element)
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }
};

using Kinds = ::testing::Types<JointSpatialForceSensing, ConnectorSpatialForceSensing>;
TYPED_TEST_SUITE(SpatialForceSensor, Kinds);

TYPED_TEST(SpatialForceSensor, KeepsForceAndTorque)
{
    this->ExpectForce(*this->sensor, Force, Torque);
    EXPECT_EQ(this->sensor->SetSpatialForce(Torque, Force), KARSuccess);
    this->ExpectForce(*this->sensor, Torque, Force);
    this->ExpectForce(*TypeParam::Sensor::create(L""), {}, {});
}

TYPED_TEST(SpatialForceSensor, RefusesANegativeIndexOfTheBody)
{
    int index = -1;
    EXPECT_EQ(this->sensor->GetIndexBody(index), KARSuccess);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(this->sensor->SetIndexBody(3), KARSuccess);
    EXPECT_EQ(this->sensor->SetIndexBody(-1), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->sensor->GetIndexBody(index), KARSuccess);
    EXPECT_EQ(index, 3);
}

TYPED_TEST(SpatialForceSensor, RefusesToGiveANegativeIndexOfADocument)
{
    TestDeserializer root;
    TestDeserializer& element = this->Plain(root).Leaf(L"Index", -1);
    element.Add(L"Force").Leaf(L"Vx", 1.0).Leaf(L"Vy", 2.0).Leaf(L"Vz", 3.0);
    element.Add(L"Torque").Leaf(L"Vx", 4.0).Leaf(L"Vy", 5.0).Leaf(L"Vz", 6.0);
    EXPECT_EQ(this->sensor->Deserialize(&root, {}), KARSuccess);
    this->TakeReports(); // the identifier that it has
    int index = 17;
    EXPECT_EQ(this->sensor->GetIndexBody(index), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(index, 17);
    // The reset of the connector's alone looks at the index.
    const bool isConnectors = std::is_same_v<TypeParam, ConnectorSpatialForceSensing>;
    EXPECT_EQ(this->sensor->Reset(), isConnectors ? KARFailure : KARSuccess);
    this->ExpectReports(isConnectors ? 1 : 0);
    this->ExpectForce(*this->sensor, isConnectors ? Force : KARMathVector(),
                      isConnectors ? Torque : KARMathVector());
}

TYPED_TEST(SpatialForceSensor, ForgetsForceAndTorqueWhenReset)
{
    this->sensor->SetIndexBody(2);
    EXPECT_EQ(this->sensor->Reset(), KARSuccess);
    this->ExpectForce(*this->sensor, {}, {});
    int index = 0;
    this->sensor->GetIndexBody(index);
    EXPECT_EQ(index, 2) << "the index stays";
}

TYPED_TEST(SpatialForceSensor, IsFilledByItsLoader)
{
    this->sensor->Reset();
    this->record.measure = [this] { this->sensor->SetSpatialForce(Force, Torque); };
    this->Attach();
    EXPECT_EQ(this->sensor->Update(), KARSuccess);
    this->ExpectForce(*this->sensor, Force, Torque);
}

TYPED_TEST(SpatialForceSensor, AsksNobodyForTheAxesOfTheWorld)
{
    this->Attach();
    this->ExpectForce(*this->sensor, Force, Torque);
    EXPECT_TRUE(this->record.calls.empty());
}

TYPED_TEST(SpatialForceSensor, GivesForceAndTorqueAlongTheDirectionsOfAFrame)
{
    this->Attach();
    for (const auto mode : {KARMPAxisMode::FirstBody, KARMPAxisMode::SecondBody}) {
        KARMathVector force;
        KARMathVector torque;
        this->record.calls.clear();
        EXPECT_EQ(this->sensor->GetSpatialForce(force, torque, mode), KARSuccess);
        EXPECT_EQ(this->record.calls, std::vector<std::string>{"ReadFrame"});
        EXPECT_EQ(this->record.mode, mode);
        EXPECT_EQ(force, KARMathVector(2.0, 3.0, 1.0));
        EXPECT_EQ(torque, KARMathVector(5.0, 6.0, 4.0));
    }
    this->ExpectForce(*this->sensor, Force, Torque);
}

TYPED_TEST(SpatialForceSensor, GivesZerosWithoutTheFrame)
{
    const auto expectZeros = [this](std::size_t reports) {
        KARMathVector force = Force;
        KARMathVector torque = Torque;
        EXPECT_EQ(this->sensor->GetSpatialForce(force, torque, KARMPAxisMode::FirstBody),
                  KARFailure);
        this->ExpectReports(reports);
        EXPECT_EQ(force, KARMathVector());
        EXPECT_EQ(torque, KARMathVector());
    };
    expectZeros(1);
    this->Attach();
    this->record.answer = KARUnexpected;
    expectZeros(1);
    this->record.answer = KARUnchanged; // a frame is valid with 0 alone
    expectZeros(1);
    this->sensor->failsToFetch = true;
    expectZeros(2); // the fetch reports as well
    this->ExpectForce(*this->sensor, Force, Torque);
}

TYPED_TEST(SpatialForceSensor, GivesTheFrameOfItsLoader)
{
    KARMathAxis frame;
    EXPECT_EQ(this->GetFrame(frame), KARFailure);
    this->ExpectReports(1);
    this->Attach();
    EXPECT_EQ(this->GetFrame(frame), KARSuccess);
    EXPECT_EQ(frame, this->Turned());
    EXPECT_EQ(this->record.mode, -1) << "no mode is asked for";
    ASSERT_EQ(this->record.calls.size(), 1U);
    EXPECT_NE(this->record.calls[0], "ReadFrame");
    this->record.answer = KARUnexpected;
    EXPECT_EQ(this->GetFrame(frame), KARUnexpected) << "the loader's status";
    this->sensor->failsToFetch = true;
    EXPECT_EQ(this->GetFrame(frame), KARFailure);
    this->ExpectReports(2);
}

TYPED_TEST(SpatialForceSensor, CopiesIndexForceAndTorque)
{
    this->sensor->SetIndexBody(2);
    const auto copy = this->sensor->copy();
    this->ExpectForce(*copy, Force, Torque);
    int index = 0;
    EXPECT_EQ(copy->GetIndexBody(index), KARSuccess);
    EXPECT_EQ(index, 2);
}

TYPED_TEST(SpatialForceSensor, WritesIndexForceAndTorque)
{
    this->Set(this->target);
    this->sensor->SetIndexBody(1);
    TestSerializer root;
    EXPECT_EQ(this->sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), TypeParam::Element);
    ASSERT_EQ(element.GetElementCount(), 4U);
    EXPECT_EQ(element.Child(0).GetId(), TypeParam::Reference);
    EXPECT_EQ(element.Child(1).GetId(), L"Index");
    EXPECT_EQ(element.Child(2).GetId(), L"Force");
    EXPECT_EQ(element.Child(3).GetId(), L"Torque");
    EXPECT_EQ(element.Integer(L"Index"), 1);
    EXPECT_EQ(element.Number(L"Force/Vx"), 1.0);
    EXPECT_EQ(element.Number(L"Force/Vz"), 3.0);
    EXPECT_EQ(element.Number(L"Torque/Vy"), 5.0);
}

TYPED_TEST(SpatialForceSensor, ReadsBackWhatItWroteInEitherForm)
{
    this->sensor->SetIndexBody(1);
    TestSerializer root;
    this->sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = TypeParam::Sensor::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), {}), KARSuccess);
        this->ExpectForce(*read, Force, Torque);
        int index = 0;
        read->GetIndexBody(index);
        EXPECT_EQ(index, 1);
    }
}

TYPED_TEST(SpatialForceSensor, KeepsWhatADocumentLacks)
{
    TestDeserializer root;
    this->Plain(root).Add(L"Torque").Leaf(L"Vy", 8.0);
    const auto read = TypeParam::Sensor::create(L"");
    read->SetIndexBody(4);
    read->SetSpatialForce(Force, Torque);
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    this->ExpectReports(4); // index, force, two components of the torque
    this->ExpectForce(*read, Force, {4.0, 8.0, 6.0});
    int index = 0;
    read->GetIndexBody(index);
    EXPECT_EQ(index, 4);
}

using JointForce = SpatialForceSensor<JointSpatialForceSensing>;
class JointSpatialForceSensor : public JointForce
{};

TEST_F(JointSpatialForceSensor, FillsSixDoublesWithForceAndTorque)
{
    std::array<double, 6> numbers{};
    EXPECT_EQ(sensor->GetSpatialForce(numbers.data()), KARSuccess);
    EXPECT_EQ(numbers, (std::array<double, 6>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(sensor->GetSpatialForce(nullptr), KARFailure);
    ExpectReports(1);
}

TEST_F(JointSpatialForceSensor, GivesTheBodyOfItsJointWithTheStoredIndex)
{
    const auto first = KARMPBody::create(L"first");
    const auto second = KARMPBody::create(L"second");
    auto found = first;
    EXPECT_EQ(sensor->GetBody(found), KARFailure) << "no joint";
    ExpectReports(1);
    EXPECT_FALSE(found);
    target->LinkToBody(first, KARMPBodyOrientation::Out);
    target->LinkToBody(second, KARMPBodyOrientation::In);
    Set(target);
    EXPECT_EQ(sensor->GetBody(found), KARSuccess);
    EXPECT_EQ(found, first);
    sensor->SetIndexBody(1);
    EXPECT_EQ(sensor->GetBody(found), KARSuccess);
    EXPECT_EQ(found, second);
    sensor->SetIndexBody(2);
    EXPECT_EQ(sensor->GetBody(found), KARFailure) << "the joint has two bodies";
    EXPECT_FALSE(found);
}

using ConnectorForce = SpatialForceSensor<ConnectorSpatialForceSensing>;
class ConnectorSpatialForceSensor : public ConnectorForce
{};

TEST_F(ConnectorSpatialForceSensor, TakesAndFillsSixDoublesForItsBodyAlone)
{
    const std::array<double, 6> given{6, 5, 4, 3, 2, 1};
    sensor->SetIndexBody(1);
    EXPECT_EQ(sensor->SetSpatialForce(0, given.data()), KARFailure);
    ExpectForce(*sensor, Force, Torque);
    EXPECT_EQ(sensor->SetSpatialForce(1, given.data()), KARSuccess);
    ExpectForce(*sensor, {6, 5, 4}, {3, 2, 1});
    std::array<double, 6> numbers{};
    EXPECT_EQ(sensor->GetSpatialForce(0, numbers.data()), KARFailure);
    EXPECT_EQ(numbers, (std::array<double, 6>{}));
    EXPECT_EQ(sensor->GetSpatialForce(1, numbers.data()), KARSuccess);
    EXPECT_EQ(numbers, given);
}

TEST_F(ConnectorSpatialForceSensor, GivesNothingForTheOtherBody)
{
    std::array<double, 6> numbers{};
    EXPECT_EQ(sensor->GetSpatialForce(1, numbers.data()), KARFailure) << "its index is 0";
    EXPECT_EQ(numbers, (std::array<double, 6>{}));
}

TEST_F(ConnectorSpatialForceSensor, RefusesNullArrays)
{
    EXPECT_EQ(sensor->SetSpatialForce(0, nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->GetSpatialForce(0, nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->SetSpatialForce(1, nullptr), KARFailure) << "the index comes first";
    EXPECT_EQ(sensor->GetSpatialForce(1, nullptr), KARFailure);
    ExpectForce(*sensor, Force, Torque);
}

} // namespace
