#include "KARMPJointDOFSensor.h"
#include "KARMPEntityTable.h"
#include "MeasuringSensors.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <limits>

namespace {

class JointDOFSensor : public MeasuringSensor<JointDOFSensing>
{
protected:
    JointDOFSensor() { Measure(); }
    void Measure()
    {
        sensor->SetPosition(0.5);
        sensor->SetVelocity(1.5);
        sensor->SetAcceleration(2.5);
    }
    static void ExpectResult(const KARMPJointDOFSensor& one, double position, double velocity,
                             double acceleration)
    {
        double found = -1.0;
        EXPECT_EQ(one.GetPosition(found), KARSuccess);
        EXPECT_EQ(found, position);
        EXPECT_EQ(one.GetVelocity(found), KARSuccess);
        EXPECT_EQ(found, velocity);
        EXPECT_EQ(one.GetAcceleration(found), KARSuccess);
        EXPECT_EQ(found, acceleration);
    }
    static void ExpectIndex(const KARMPJointDOFSensor& one, int index)
    {
        int found = -1;
        EXPECT_EQ(one.GetIndexDOF(found), KARSuccess);
        EXPECT_EQ(found, index);
    }
    static QOBSharedHandle<KARMPJointDOFSensor> Read(TestDeserializer& root)
    {
        const auto read = KARMPJointDOFSensor::create(L"");
        read->SetIndexDOF(2);
        read->SetPosition(7.0);
        EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
        return read;
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"JointDOFSensor")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes")
            .Leaf(L"Velocity", 8.0)
            .Leaf(L"Acceleration", 9.0);
    }
};

TEST_F(JointDOFSensor, IsAsNewWithZeros)
{
    const auto made = KARMPJointDOFSensor::create(L"");
    ExpectResult(*made, 0.0, 0.0, 0.0);
    ExpectIndex(*made, 0);
}

TEST_F(JointDOFSensor, KeepsItsResult)
{
    ExpectResult(*sensor, 0.5, 1.5, 2.5);
    EXPECT_EQ(sensor->SetPosition(3.0), KARSuccess);
    EXPECT_EQ(sensor->SetVelocity(4.0), KARSuccess);
    EXPECT_EQ(sensor->SetAcceleration(5.0), KARSuccess);
    ExpectResult(*sensor, 3.0, 4.0, 5.0);
}

TEST_F(JointDOFSensor, MeasuresOneOfSixFreedoms)
{
    for (int index = 0; index < 6; ++index) {
        EXPECT_EQ(sensor->SetIndexDOF(index), KARSuccess);
        ExpectIndex(*sensor, index);
    }
    for (const int index : {6, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(sensor->SetIndexDOF(index), KARFailure) << index;
        ExpectIndex(*sensor, 5);
    }
}

TEST_F(JointDOFSensor, LosesItsIndexWithItsResultWhenReset)
{
    sensor->SetIndexDOF(4);
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    ExpectResult(*sensor, 0.0, 0.0, 0.0);
    ExpectIndex(*sensor, 0);
}

TEST_F(JointDOFSensor, IsFilledByItsLoader)
{
    sensor->Reset();
    record.measure = [this] { Measure(); };
    sensor->SetLoader(new JointDOFSensing::Loader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    ExpectResult(*sensor, 0.5, 1.5, 2.5);
}

TEST_F(JointDOFSensor, GivesItsLoader)
{
    KARIMPJointDOFSensorLoader* loader = nullptr;
    EXPECT_EQ(sensor->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    auto* const attached = new JointDOFSensing::Loader(record);
    sensor->SetLoader(attached);
    EXPECT_EQ(sensor->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, attached);
    sensor->failsToFetch = true;
    EXPECT_EQ(sensor->GetLoader(loader), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(loader, nullptr);
}

TEST_F(JointDOFSensor, CopiesIndexAndResult)
{
    sensor->SetIndexDOF(3);
    const auto copy = sensor->copy();
    ExpectResult(*copy, 0.5, 1.5, 2.5);
    ExpectIndex(*copy, 3);
}

TEST_F(JointDOFSensor, WritesItsIndexBehindItsResult)
{
    Set(target);
    sensor->SetIndexDOF(3);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    const wchar_t* const names[] = {L"Joint", L"Position", L"Velocity", L"Acceleration",
                                    L"DOFindex"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Number(L"Position"), 0.5);
    EXPECT_EQ(element.Number(L"Velocity"), 1.5);
    EXPECT_EQ(element.Number(L"Acceleration"), 2.5);
    EXPECT_EQ(element.Integer(L"DOFindex"), 3);
}

TEST_F(JointDOFSensor, ReadsBackWhatItWroteInEitherForm)
{
    sensor->SetIndexDOF(3);
    TestSerializer root;
    sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = Read(*TestDeserializer::From(root, {.asText = asText}));
        ExpectResult(*read, 0.5, 1.5, 2.5);
        ExpectIndex(*read, 3);
    }
}

TEST_F(JointDOFSensor, KeepsWhatADocumentLacks)
{
    TestDeserializer root;
    Plain(root);
    const auto read = Read(root);
    ExpectReports(2); // position and index
    ExpectResult(*read, 7.0, 8.0, 9.0);
    ExpectIndex(*read, 2);
}

TEST_F(JointDOFSensor, TakesAnyIndexOfADocumentAndRefusesToGiveABadOne)
{
    TestDeserializer root;
    Plain(root).Leaf(L"Position", 7.0).Leaf(L"DOFindex", 6);
    const auto read = Read(root);
    int index = 17;
    EXPECT_EQ(read->GetIndexDOF(index), KARFailure);
    EXPECT_EQ(index, 17);
    TestSerializer written;
    EXPECT_EQ(read->Serialize(&written), KARSuccess);
    EXPECT_EQ(written.Integer(L"JointDOFSensor/DOFindex"), 6);
}

} // namespace
