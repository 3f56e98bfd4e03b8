#include "KARMPConstraintSensor.h"
#include "KARMPEntityTable.h"
#include "MeasuringSensors.h"
#include "TestSerializer.h"

namespace {

using Status = KARMPConstraintSensor::RedundancyStatus;
using Constraints = QOBSharedVector<KARMPConstraint>;
using Constraint = QOBSharedHandle<KARMPConstraint>;

class ConstraintSensor : public MeasuringSensor<ConstraintSensing>
{
protected:
    using Sensor = QOBSharedHandle<KARMPSensor>;

    ~ConstraintSensor() override
    {
        for (const Constraint& one : {first, second})
            one->orphanObject();
    }
    static void ExpectResult(const KARMPConstraintSensor& one, Status status,
                             const Constraints& inFirst, const Constraints& inSecond)
    {
        Status foundStatus{};
        Constraints foundFirst;
        Constraints foundSecond;
        EXPECT_EQ(one.GetRedundancyStatus(foundStatus, foundFirst, foundSecond), KARSuccess);
        EXPECT_EQ(foundStatus, status);
        EXPECT_EQ(foundFirst, inFirst);
        EXPECT_EQ(foundSecond, inSecond);
    }
    void Link(const Constraint& one) { one->LinkToSensor(Sensor(sensor)); }

    Constraint first = KARMPConcentricity::create(L"first");
    Constraint second = KARMPConcentricity::create(L"second");
};

TEST_F(ConstraintSensor, IsAsNewWithStatusOneAndEmptyLists)
{
    ExpectResult(*sensor, static_cast<Status>(1), {}, {});
}

TEST_F(ConstraintSensor, KeepsItsResult)
{
    EXPECT_EQ(sensor->SetRedundancyStatus(Status::Redundant, {first, second}, {second}),
              KARSuccess);
    ExpectResult(*sensor, Status::Redundant, {first, second}, {second});
    EXPECT_EQ(sensor->SetRedundancyStatus(Status::Inconsistent, {}, {first, first}), KARSuccess);
    ExpectResult(*sensor, Status::Inconsistent, {}, {first});
}

TEST_F(ConstraintSensor, LeavesNullEntriesOut)
{
    EXPECT_EQ(sensor->SetRedundancyStatus(Status::Redundant, {{}, first}, {}), KARFailure);
    ExpectReports(1);
    ExpectResult(*sensor, Status::Redundant, {first}, {});
    EXPECT_EQ(sensor->SetRedundancyStatus(Status::Redundant, {}, {first, {}}), KARFailure);
    ExpectReports(1);
    ExpectResult(*sensor, Status::Redundant, {}, {first});
}

TEST_F(ConstraintSensor, KeepsItsListsWhenReset)
{
    sensor->SetRedundancyStatus(Status::Redundant, {first}, {second});
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    ExpectResult(*sensor, Status::Independent, {first}, {second});
}

TEST_F(ConstraintSensor, UpdatesNothingItself)
{
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    sensor->Deactivate();
    record.calls.clear();
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(ConstraintSensor, ForgetsAConstraintWhereverItKnowsIt)
{
    EXPECT_EQ(sensor->RemoveConstraint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->RemoveConstraint(target), KARUnchanged);
    Set(target);
    sensor->SetRedundancyStatus(Status::Redundant, {first, target}, {target, second});
    EXPECT_EQ(sensor->RemoveConstraint(target), KARSuccess);
    ExpectResult(*sensor, Status::Redundant, {first}, {second});
    Target found;
    EXPECT_EQ(Get(found), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->RemoveConstraint(first), KARSuccess);
    EXPECT_EQ(sensor->RemoveConstraint(second), KARSuccess);
    EXPECT_EQ(sensor->RemoveConstraint(second), KARUnchanged);
    ExpectResult(*sensor, Status::Redundant, {}, {});
}

TEST_F(ConstraintSensor, LosesConstraintsThatAreDestroyed)
{
    Set(target);
    sensor->SetRedundancyStatus(Status::Redundant, {first}, {second, target});
    for (const Constraint& one : {target, first, second})
        Link(one);
    QOBSharedHandle<KARMPConcentricity> destroyed(target);
    KARMPConcentricity::destroy(destroyed);
    Target found;
    EXPECT_EQ(Get(found), KARFailure);
    ExpectReports(1);
    ExpectResult(*sensor, Status::Redundant, {first}, {second});
    first->orphanObject();
    ExpectResult(*sensor, Status::Redundant, {}, {second});
}

TEST_F(ConstraintSensor, IsLetGoByAllConstraintsWhenOrphaned)
{
    Set(target);
    sensor->SetRedundancyStatus(Status::Redundant, {first}, {second});
    for (const Constraint& one : {target, first, second})
        Link(one);
    sensor->orphanObject();
    for (const Constraint& one : {target, first, second})
        EXPECT_EQ(one->GetLinkedSensorCount(), 0);
    Target found;
    EXPECT_EQ(Get(found), KARFailure);
    ExpectReports(1);
    ExpectResult(*sensor, Status::Redundant, {}, {});
}

TEST_F(ConstraintSensor, TakesConstraintsThatDoNotKnowItForLetGo)
{
    Set(target);
    sensor->SetRedundancyStatus(Status::Redundant, {first}, {second});
    Link(second);
    EXPECT_EQ(sensor->RemoveParent(), KARSuccess);
    EXPECT_EQ(second->GetLinkedSensorCount(), 0);
    ExpectResult(*sensor, Status::Redundant, {first}, {second});
}

TEST_F(ConstraintSensor, RemovesItselfFromAListOfConstraints)
{
    Link(first);
    Link(second);
    EXPECT_EQ(sensor->RemoveReferenceParent({first, target}), KARSuccess);
    EXPECT_EQ(first->GetLinkedSensorCount(), 0);
    EXPECT_EQ(second->GetLinkedSensorCount(), 1);
    EXPECT_EQ(sensor->RemoveReferenceParent({{}, second}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(second->GetLinkedSensorCount(), 1) << "the walk ends";
    EXPECT_EQ(sensor->RemoveReferenceParent({}), KARSuccess);
}

TEST_F(ConstraintSensor, WritesNoResult)
{
    Set(target);
    sensor->SetRedundancyStatus(Status::Redundant, {first}, {second});
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.Child(0).GetElementCount(), 1U);
    EXPECT_EQ(root.Child(0).Child(0).GetId(), L"Constraint");
}

TEST_F(ConstraintSensor, CopiesItsStatusWithoutItsLists)
{
    for (const Status status : {Status::Redundant, Status::Inconsistent}) {
        sensor->SetRedundancyStatus(status, {first}, {second});
        ExpectResult(*sensor->copy(), status, {}, {});
    }
}

} // namespace
