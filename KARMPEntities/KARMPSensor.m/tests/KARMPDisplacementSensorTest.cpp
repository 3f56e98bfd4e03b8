#include "KARMPDisplacementSensor.h"
#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingSensorLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class SensorBase : public KARMPTestFixture
{
protected:
    QOBSharedHandle<ConcreteEntity<KARMPSensor>> sensor = ConcreteEntity<KARMPSensor>::create(L"s");
    KARMPEntityTable entities;
};

TEST_F(SensorBase, DoesNothingOfItsOwn)
{
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_EQ(sensor->RemoveParent(), KARSuccess);
    const QOBSharedHandle<KARMPConstraint> constraint(
        ConcreteEntity<KARMPConstraint>::create(L"c"));
    EXPECT_EQ(sensor->RemoveConstraint(constraint), KARSuccess);
    EXPECT_EQ(sensor->RemoveConstraint({}), KARFailure);
    ExpectReports(1);
}

TEST_F(SensorBase, WritesAndReadsTheContentOfAnEntity)
{
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"@id"), L"s");
    EXPECT_EQ(root.GetElementCount(), 0U);
    const auto tree = TestDeserializer::From(root);
    const auto read = KARMPDisplacementSensor::create(L"");
    EXPECT_EQ(read->KARMPSensor::Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(read->getEntityName(), L"s");
    EXPECT_EQ(sensor->Serialize(nullptr), KARFailure);
    EXPECT_EQ(sensor->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(2);
}

/// A sensor on a body.
class DisplacementSensor : public KARMPTestFixture
{
protected:
    using Body = QOBSharedHandle<KARMPBody>;
    using Sensor = QOBSharedHandle<KARMPDisplacementSensor>;

    DisplacementSensor()
    {
        body->SetIdentifier(L"body");
        entities.Set(L"body", body);
        sensor->SetDisplacement(Displacement);
    }
    ~DisplacementSensor() override
    {
        sensor->orphanObject();
        body->orphanObject();
    }
    static KARMathTransformation DisplacementOf(const KARMPDisplacementSensor& one)
    {
        KARMathTransformation displacement;
        one.GetDisplacement(displacement);
        return displacement;
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"DisplacementSensor")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    const KARMathTransformation Displacement{{{0.5, 1.0, 1.5}, {2.0, 2.5, 3.0}, {3.5, 4.0, 4.5}},
                                             {5.0, 5.5, 6.0}};
    SensorLoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPDisplacementSensor>> sensor =
        ConcreteEntity<KARMPDisplacementSensor>::create(L"s");
    Body body = KARMPBody::create(L"body");
    KARMPEntityTable entities;
};

TEST_F(DisplacementSensor, HasOneBody)
{
    Body found = body;
    EXPECT_EQ(sensor->GetBody(found), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(found);
    EXPECT_EQ(sensor->SetBody(body), KARSuccess);
    EXPECT_EQ(sensor->SetBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(sensor->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
    EXPECT_EQ(sensor->RemoveBody({}), KARFailure);
    ExpectReports(1);
    const Body other = KARMPBody::create(L"other");
    EXPECT_EQ(sensor->RemoveBody(other), KARUnchanged);
    EXPECT_EQ(sensor->RemoveBody(body), KARSuccess);
    EXPECT_EQ(sensor->RemoveBody(body), KARUnchanged);
}

TEST_F(DisplacementSensor, ForgetsItsDisplacementWhenReset)
{
    sensor->SetBody(body);
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_EQ(DisplacementOf(*sensor), KARMathTransformation());
    EXPECT_TRUE(record.calls.empty());
    Body found;
    EXPECT_EQ(sensor->GetBody(found), KARSuccess);
}

TEST_F(DisplacementSensor, HasItsLoaderUpdate)
{
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_EQ(record.calls, std::vector<std::string>{"Update"});
    record.answer = KARUnchanged;
    EXPECT_EQ(sensor->Update(), KARSuccess);
    record.answer = KARUnexpected;
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    sensor->failsToFetch = true;
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
}

TEST_F(DisplacementSensor, FailsToUpdateWithoutALoaderUnlessInactive)
{
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    sensor->Deactivate();
    EXPECT_EQ(sensor->Update(), KARSuccess);
}

TEST_F(DisplacementSensor, TakesALoaderOfAnotherKindForNone)
{
    sensor->SetLoader(new RecordingEntityLoader(record));
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(DisplacementSensor, IsFilledByItsLoader)
{
    sensor->SetDisplacement({});
    record.measure = [this] { sensor->SetDisplacement(Displacement); };
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_EQ(DisplacementOf(*sensor), Displacement);
}

TEST_F(DisplacementSensor, IsLetGoByItsBodyWhenOrphaned)
{
    sensor->SetBody(body);
    body->SetDisplacementSensor(Sensor(sensor));
    sensor->orphanObject();
    Sensor found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
    Body none;
    EXPECT_EQ(sensor->GetBody(none), KARFailure);
    ExpectReports(1);
}

TEST_F(DisplacementSensor, LosesABodyThatIsDestroyed)
{
    sensor->SetBody(body);
    body->SetDisplacementSensor(Sensor(sensor));
    KARMPBody::destroy(body);
    EXPECT_FALSE(body);
    Body none;
    EXPECT_EQ(sensor->GetBody(none), KARFailure);
    ExpectReports(1);
    body = KARMPBody::create(L"another");
}

TEST_F(DisplacementSensor, LeavesABodyAloneThatHasAnotherSensor)
{
    const Sensor other = KARMPDisplacementSensor::create(L"other");
    sensor->SetBody(body);
    body->SetDisplacementSensor(other);
    EXPECT_EQ(sensor->RemoveParent(), KARSuccess);
    Sensor found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
    EXPECT_EQ(found, other);
    EXPECT_EQ(sensor->RemoveParent(), KARSuccess) << "nothing to do without a body";
}

TEST_F(DisplacementSensor, CopiesItsDisplacementAlone)
{
    sensor->SetBody(body);
    const auto copy = sensor->copy();
    EXPECT_EQ(DisplacementOf(*copy), Displacement);
    Body found;
    EXPECT_EQ(copy->GetBody(found), KARFailure);
    ExpectReports(1);
}

TEST_F(DisplacementSensor, WritesBodyAndDisplacement)
{
    sensor->SetBody(body);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"DisplacementSensor");
    ASSERT_EQ(element.GetElementCount(), 2U);
    EXPECT_EQ(element.Text(L"Body/@id"), L"body");
    EXPECT_EQ(element.Text(L"Body/@name"), L"body");
    EXPECT_EQ(element.Number(L"Displacement/Translation/Vy"), 5.5);
    double expected = 0.5;
    for (const wchar_t* name :
         {L"M1x", L"M1y", L"M1z", L"M2x", L"M2y", L"M2z", L"M3x", L"M3y", L"M3z"}) {
        EXPECT_EQ(element.Number(std::wstring(L"Displacement/Rotation/") + name), expected);
        expected += 0.5;
    }
}

TEST_F(DisplacementSensor, WritesNoBodyThatItDoesNotHave)
{
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"DisplacementSensor/Body"));
}

TEST_F(DisplacementSensor, ReadsBackWhatItWroteInEitherForm)
{
    sensor->SetBody(body);
    TestSerializer root;
    sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const Sensor read = KARMPDisplacementSensor::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        EXPECT_EQ(DisplacementOf(*read), Displacement);
        Body found;
        EXPECT_EQ(read->GetBody(found), KARSuccess);
        EXPECT_EQ(found, body);
    }
}

TEST_F(DisplacementSensor, KeepsItsDisplacementWhereItIsMissing)
{
    TestDeserializer root;
    Plain(root);
    const Sensor read = KARMPDisplacementSensor::create(L"");
    read->SetDisplacement(Displacement);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(DisplacementOf(*read), Displacement);
    TestDeserializer other;
    Plain(other).Add(L"Displacement").Add(L"Translation").Leaf(L"Vx", 1.0);
    const Sensor again = KARMPDisplacementSensor::create(L"");
    again->SetDisplacement(Displacement);
    EXPECT_EQ(again->Deserialize(&other, entities), KARSuccess);
    ExpectReports(3); // two components and the rotation
    EXPECT_EQ(DisplacementOf(*again),
              KARMathTransformation(Displacement.GetMatrix(), {1.0, 0.0, 0.0}));
}

TEST_F(DisplacementSensor, SkipsABodyThatIsUnknownAndRefusesAnotherClass)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Reference(L"Body", L"unknown");
    element.Add(L"Displacement");
    const Sensor read = KARMPDisplacementSensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2); // neither translation nor rotation
    Body found;
    EXPECT_EQ(read->GetBody(found), KARFailure);
    ExpectReports(1);
    entities.Set(L"unknown", KARMPPoint::create(L"p"));
    EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(DisplacementSensor, FailsWithoutItsElement)
{
    TestDeserializer root;
    EXPECT_EQ(sensor->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(sensor->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(sensor->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

TEST_F(DisplacementSensor, FailsWhenABodyOrDisplacementCannotBeAdded)
{
    sensor->SetBody(body);
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            const bool fails = failing >= 1 && failing <= 3;
            EXPECT_EQ(sensor->Serialize(&root), fails ? KARFailure : KARSuccess) << failing;
            EXPECT_EQ(TakeReports() > 0, failing != 0);
        });
    EXPECT_EQ(creations, 17U);
}

} // namespace
