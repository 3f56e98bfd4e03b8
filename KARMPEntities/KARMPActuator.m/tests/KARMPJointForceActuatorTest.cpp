#include "KARMPJointForceActuator.h"
#include "ConcreteEntity.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPJointKinds.h"
#include "KARMPTestFixture.h"
#include "RecordingActuatorLoaders.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Calls = std::vector<std::string>;
using Value = QOBSharedHandle<KARMPValue>;

TestDeserializer& Plain(TestDeserializer& root)
{
    return root.Add(L"JointForceActuator")
        .Attribute(L"id", L"r")
        .Attribute(L"name", L"r")
        .Attribute(L"isActive", L"yes");
}

template <class T>
QOBSharedHandle<T> Identified(const wchar_t* identifier)
{
    const QOBSharedHandle<T> entity = T::create(identifier);
    entity->SetIdentifier(identifier);
    return entity;
}

/// A force on a joint, with a loader.
class JointForceActuator : public KARMPTestFixture
{
protected:
    JointForceActuator()
    {
        entities.Set(L"k", value);
        entities.Set(L"j", joint);
        actuator->SetLoader(loader);
    }
    ~JointForceActuator() override
    {
        loader->force = nullptr;
        loader->joint = nullptr;
    }

    LoaderRecord record;
    KARMPEntityTable entities;
    const Value value = Identified<KARMPConstant>(L"k");
    const QOBSharedHandle<KARMPJoint> joint = Identified<KARMPRevolute>(L"j");
    const QOBSharedHandle<ConcreteEntity<KARMPJointForceActuator>> actuator =
        ConcreteEntity<KARMPJointForceActuator>::create(L"a");
    RecordingJointForceActuatorLoader* loader = new RecordingJointForceActuatorLoader(record);
};

TEST_F(JointForceActuator, TellsItsLoaderOfForceAndJoint)
{
    EXPECT_EQ(actuator->SetForce(value), KARSuccess);
    EXPECT_EQ(actuator->SetJoint(joint), KARSuccess);
    EXPECT_EQ(actuator->SetIndexDOF(3), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"SetForce", "SetJoint"}));
    EXPECT_EQ(loader->force, value);
    EXPECT_EQ(loader->joint, joint);
    EXPECT_EQ(actuator->SetJoint(joint), KARUnchanged);
    EXPECT_EQ(actuator->SetForce(value), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"SetForce", "SetJoint", "SetForce"}));
}

TEST_F(JointForceActuator, TellsItsLoaderOfANullForceAndKeepsTheOldOne)
{
    actuator->SetForce(value);
    record.calls.clear();
    EXPECT_EQ(actuator->SetForce({}), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(record.calls, Calls{"SetForce"});
    EXPECT_FALSE(loader->force);
    Value found;
    EXPECT_EQ(actuator->GetForce(found), KARSuccess);
    EXPECT_EQ(found, value);
    record.answer = KARUnexpected;
    EXPECT_EQ(actuator->SetForce({}), KARFailure);
    ExpectReports(2);
}

TEST_F(JointForceActuator, RefusesANullJointWithoutTellingItsLoader)
{
    EXPECT_EQ(actuator->SetJoint({}), KARFailure) << "nor is it the same as none";
    ExpectReports(1);
    actuator->SetJoint(joint);
    record.calls.clear();
    EXPECT_EQ(actuator->SetJoint({}), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(record.calls.empty());
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(actuator->GetJoint(found), KARSuccess);
    EXPECT_EQ(found, joint);
}

TEST_F(JointForceActuator, KeepsWhatItsLoaderRefuses)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(actuator->SetForce(value), KARSuccess);
    record.answer = KARUnexpected;
    EXPECT_EQ(actuator->SetForce(value), KARFailure);
    EXPECT_EQ(actuator->SetJoint(joint), KARFailure);
    ExpectReports(2);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(actuator->GetJoint(found), KARSuccess);
    actuator->failsToFetch = true;
    EXPECT_EQ(actuator->SetForce(value), KARFailure);
    ExpectReports(2);
}

TEST_F(JointForceActuator, WithoutALoaderStoresAlone)
{
    const auto bare = KARMPJointForceActuator::create(L"bare");
    Value force = value;
    EXPECT_EQ(bare->GetForce(force), KARFailure);
    EXPECT_FALSE(force);
    QOBSharedHandle<KARMPJoint> found = joint;
    EXPECT_EQ(bare->GetJoint(found), KARFailure);
    EXPECT_FALSE(found);
    ExpectReports(2);
    EXPECT_EQ(bare->SetForce(value), KARSuccess);
    EXPECT_EQ(bare->SetForce({}), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(bare->SetJoint(joint), KARSuccess);
    bare->SetLoader(new RecordingEntityLoader(record));
    KARIMPJointForceActuatorLoader* own = nullptr;
    EXPECT_EQ(bare->GetLoader(own), KARSuccess);
    EXPECT_EQ(own, nullptr);
    EXPECT_EQ(bare->SetForce(value), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(JointForceActuator, HasAnIndexBetweenZeroAndFive)
{
    int index = -1;
    EXPECT_EQ(actuator->GetIndexDOF(index), KARSuccess);
    EXPECT_EQ(index, 0);
    for (int valid = 0; valid <= 5; ++valid) {
        EXPECT_EQ(actuator->SetIndexDOF(valid), KARSuccess);
        EXPECT_EQ(actuator->GetIndexDOF(index), KARSuccess);
        EXPECT_EQ(index, valid);
    }
    for (const int invalid : {6, -1, 2'000'000'000, -2'000'000'000})
        EXPECT_EQ(actuator->SetIndexDOF(invalid), KARFailure);
    actuator->GetIndexDOF(index);
    EXPECT_EQ(index, 5);
}

TEST_F(JointForceActuator, CopiesItsIndexAlone)
{
    actuator->SetForce(value);
    actuator->SetJoint(joint);
    actuator->SetIndexDOF(4);
    const auto copy = actuator->copy();
    int index = 0;
    copy->GetIndexDOF(index);
    EXPECT_EQ(index, 4);
    Value force;
    EXPECT_EQ(copy->GetForce(force), KARFailure);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(copy->GetJoint(found), KARFailure);
    ExpectReports(2);
}

TEST_F(JointForceActuator, ComesBackFromADocument)
{
    actuator->SetForce(value);
    actuator->SetJoint(joint);
    actuator->SetIndexDOF(4);
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"JointForceActuator");
    ASSERT_EQ(element.GetElementCount(), 3U);
    EXPECT_EQ(element.Child(0).GetId(), L"Force");
    EXPECT_EQ(element.Text(L"Force/@id"), L"k");
    EXPECT_EQ(element.Text(L"Force/@name"), L"k");
    EXPECT_EQ(element.Text(L"Joint/@id"), L"j");
    EXPECT_EQ(element.Integer(L"DOFindex"), 4);
    const auto read = KARMPJointForceActuator::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    Value force;
    EXPECT_EQ(read->GetForce(force), KARSuccess);
    EXPECT_EQ(force, value);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(read->GetJoint(found), KARSuccess);
    int index = 0;
    read->GetIndexDOF(index);
    EXPECT_EQ(index, 4);
}

TEST_F(JointForceActuator, WritesNoForceWithoutOneAndReportsItWhenReading)
{
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.Child(0).GetElementCount(), 1U);
    const auto read = KARMPJointForceActuator::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_GE(TakeReports(), 1U);
    TestDeserializer without;
    Plain(without).Add(L"Force").Attribute(L"id", L"k");
    EXPECT_EQ(read->Deserialize(&without, entities), KARSuccess);
    ExpectReports(2);
}

TEST_F(JointForceActuator, ReportsAnIndexOutOfRangeInADocument)
{
    TestDeserializer root;
    Plain(root).Leaf(L"DOFindex", 6).Add(L"Force").Attribute(L"id", L"k");
    actuator->SetIndexDOF(2);
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2);
    int index = 0;
    actuator->GetIndexDOF(index);
    EXPECT_EQ(index, 2);
}

} // namespace
