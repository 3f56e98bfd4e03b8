// What the measuring sensors have in common: the entity that each measures, and the update.
#include "MeasuringSensors.h"

#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Measuring =
    ::testing::Types<DisplacementSensing, JointDOFSensing, JointSpatialForceSensing,
                     ConnectorSpatialForceSensing, MotorForceSensing, ConstraintSensing>;
TYPED_TEST_SUITE(MeasuringSensor, Measuring);

TYPED_TEST(MeasuringSensor, KeepsWhatItMeasures)
{
    auto found = this->target;
    EXPECT_EQ(this->Get(found), KARFailure);
    this->ExpectReports(1);
    EXPECT_FALSE(found);
    EXPECT_EQ(this->Set(this->target), KARSuccess);
    EXPECT_EQ(this->Set({}), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->Get(found), KARSuccess);
    EXPECT_EQ(found, this->target) << "a null handle leaves the former one";
    const auto other = TypeParam::MakeTarget();
    EXPECT_EQ(this->Set(other), KARSuccess);
    EXPECT_EQ(this->Get(found), KARSuccess);
    EXPECT_EQ(found, other);
}

TYPED_TEST(MeasuringSensor, KeepsWhatItMeasuresWhenReset)
{
    this->Set(this->target);
    EXPECT_EQ(this->sensor->Reset(), KARSuccess);
    auto found = TypeParam::MakeTarget();
    EXPECT_EQ(this->Get(found), KARSuccess);
    EXPECT_EQ(found, this->target);
}

TYPED_TEST(MeasuringSensor, CopiesNotWhatItMeasures)
{
    this->Set(this->target);
    auto found = this->target;
    EXPECT_EQ(((*this->sensor->copy()).*TypeParam::Get)(found), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(MeasuringSensor, WritesAReferenceToWhatItMeasures)
{
    const std::wstring path = TypeParam::Element + std::wstring(L"/") + TypeParam::Reference;
    TestSerializer without;
    EXPECT_EQ(this->sensor->Serialize(&without), KARSuccess);
    EXPECT_FALSE(without.Has(path));
    this->Set(this->target);
    TestSerializer root;
    EXPECT_EQ(this->sensor->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(path + L"/@id"), L"target");
    EXPECT_EQ(root.Text(path + L"/@name"), L"target");
}

TYPED_TEST(MeasuringSensor, ReadsWhatItMeasuresByItsIdentifier)
{
    this->Set(this->target);
    TestSerializer root;
    this->sensor->Serialize(&root);
    const auto tree = TestDeserializer::From(root);
    KARMPEntityTable entities;
    const auto unresolved = TypeParam::Sensor::create(L"");
    EXPECT_EQ(unresolved->Deserialize(tree.get(), entities), KARSuccess);
    auto found = this->target;
    EXPECT_EQ(((*unresolved).*TypeParam::Get)(found), KARFailure);
    this->ExpectReports(1);
    entities.Set(L"target", this->target);
    const auto read = TypeParam::Sensor::create(L"");
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(((*read).*TypeParam::Get)(found), KARSuccess);
    EXPECT_EQ(found, this->target);
    entities.Set(L"target", KARMPPoint::create(L"p"));
    EXPECT_THROW(TypeParam::Sensor::create(L"")->Deserialize(tree.get(), entities),
                 QOBEInvalidCast);
}

// Whoever is measured by a sensor that is not linked back lives as long as the sensor keeps it.
TYPED_TEST(MeasuringSensor, MayOutliveWhatItMeasures)
{
    this->Set(this->target);
    this->target->orphanObject();
    auto found = TypeParam::MakeTarget();
    EXPECT_EQ(this->Get(found), KARSuccess);
    EXPECT_TRUE(found->isOrphaned());
    EXPECT_EQ(this->sensor->Reset(), KARSuccess);
    TestSerializer root;
    EXPECT_EQ(this->sensor->Serialize(&root), KARSuccess);
}

TYPED_TEST(MeasuringSensor, DiesWithoutWhatItMeasures)
{
    this->Set(this->target);
    const auto count = this->target->getReferenceCount();
    const int alive = TestFixture::Concrete::Alive();
    this->sensor->orphanObject();
    this->sensor = TestFixture::Concrete::create(L"another");
    EXPECT_EQ(TestFixture::Concrete::Alive(), alive);
    EXPECT_EQ(this->target->getReferenceCount(), count - 1);
}

/// The same for sensors with an update of their own.
template <class Kind>
class UpdatedSensor : public MeasuringSensor<Kind>
{};
using Updated = ::testing::Types<DisplacementSensing, JointDOFSensing, JointSpatialForceSensing,
                                 ConnectorSpatialForceSensing, MotorForceSensing>;
TYPED_TEST_SUITE(UpdatedSensor, Updated);

TYPED_TEST(UpdatedSensor, AsksItsLoaderOnce)
{
    this->sensor->SetLoader(new typename TypeParam::Loader(this->record));
    EXPECT_EQ(this->sensor->Update(), KARSuccess);
    EXPECT_EQ(this->record.calls, std::vector<std::string>{"Update"});
    EXPECT_EQ(this->sensor->Reset(), KARSuccess);
    EXPECT_EQ(this->record.calls.size(), 1U) << "a reset asks nothing";
}

TYPED_TEST(UpdatedSensor, SucceedsUnlessItsLoaderFails)
{
    this->sensor->SetLoader(new typename TypeParam::Loader(this->record));
    this->record.answer = KARUnchanged;
    EXPECT_EQ(this->sensor->Update(), KARSuccess);
    this->record.answer = KARUnexpected;
    EXPECT_EQ(this->sensor->Update(), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(UpdatedSensor, FailsWithoutALoaderOfItsKind)
{
    EXPECT_EQ(this->sensor->Update(), KARFailure);
    this->ExpectReports(1);
    this->sensor->SetLoader(new RecordingEntityLoader(this->record));
    EXPECT_EQ(this->sensor->Update(), KARFailure);
    this->ExpectReports(1);
    EXPECT_TRUE(this->record.calls.empty());
    this->sensor->failsToFetch = true;
    EXPECT_EQ(this->sensor->Update(), KARFailure);
    this->ExpectReports(TypeParam::ReportsOfFetch);
}

TYPED_TEST(UpdatedSensor, AsksNothingWhenInactive)
{
    this->sensor->Deactivate();
    EXPECT_EQ(this->sensor->Update(), TypeParam::Inactive) << "without a loader either";
    this->sensor->SetLoader(new typename TypeParam::Loader(this->record));
    EXPECT_EQ(this->sensor->Update(), TypeParam::Inactive);
    EXPECT_TRUE(this->record.calls.empty());
}

} // namespace
