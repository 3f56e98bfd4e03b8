// The bodies of planar sensors.
#include "ConcreteEntity.h"
#include "KARMPBody2D.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPDofSensor2D.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Body = QOBSharedHandle<KARMPBody2D>;

/// Two planar bodies and one in space, all of them in a table.
class PlanarSensorLinks : public KARMPTestFixture
{
protected:
    PlanarSensorLinks()
    {
        Enter(L"body", body);
        Enter(L"other", other);
        Enter(L"spatial", KARMPBody::create(L"spatial"));
    }
    void Enter(const std::wstring& identifier, const QOBSharedHandle<KARMPEntity>& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }

    KARMPEntityTable entities;
    Body body = KARMPBody2D::create(L"body");
    Body other = KARMPBody2D::create(L"other");
};

class PlanarDisplacementSensorLinks : public PlanarSensorLinks
{
protected:
    using Sensor = QOBSharedHandle<KARMPDisplacementSensor2D>;
    using OpenSensor = ConcreteEntity<KARMPDisplacementSensor2D>;

    ~PlanarDisplacementSensorLinks() override
    {
        sensor->orphanObject();
        if (body)
            body->orphanObject();
    }
    void LinkBoth()
    {
        sensor->SetBody(body);
        body->SetDisplacementSensor(Sensor(sensor));
    }
    Body BodyOfSensor()
    {
        Body found;
        if (KARFailed(sensor->GetBody(found)))
            ExpectReports(1);
        return found;
    }

    QOBSharedHandle<OpenSensor> sensor = OpenSensor::create(L"s");
};

TEST_F(PlanarDisplacementSensorLinks, HasOneBody)
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
    EXPECT_EQ(sensor->RemoveBody(other), KARUnchanged);
    EXPECT_EQ(sensor->RemoveBody(body), KARSuccess);
    EXPECT_EQ(sensor->RemoveBody(body), KARUnchanged);
}

TEST_F(PlanarDisplacementSensorLinks, IsLetGoByItsBodyWhenOrphaned)
{
    LinkBoth();
    sensor->orphanObject();
    Sensor found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
    EXPECT_FALSE(BodyOfSensor());
}

TEST_F(PlanarDisplacementSensorLinks, LosesABodyThatIsDestroyed)
{
    LinkBoth();
    KARMPBody2D::destroy(body);
    EXPECT_FALSE(BodyOfSensor());
}

TEST_F(PlanarDisplacementSensorLinks, LeavesABodyAloneThatHasAnotherSensor)
{
    const Sensor another = KARMPDisplacementSensor2D::create(L"another");
    sensor->SetBody(body);
    body->SetDisplacementSensor(another);
    EXPECT_EQ(sensor->RemoveParent(), KARSuccess);
    Sensor found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
    EXPECT_EQ(found, another);
    EXPECT_EQ(sensor->RemoveParent(), KARSuccess) << "nothing to do without a body";
}

TEST_F(PlanarDisplacementSensorLinks, KeepItsBodyWhenResetAndNotWhenCopied)
{
    sensor->SetBody(body);
    sensor->Reset();
    EXPECT_EQ(BodyOfSensor(), body);
    Body found;
    EXPECT_EQ(sensor->copy()->GetBody(found), KARFailure);
    ExpectReports(1);
}

TEST_F(PlanarDisplacementSensorLinks, StandBeforeTheDisplacementAndComeBack)
{
    sensor->SetBody(body);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 2U);
    EXPECT_EQ(element.Child(0).GetId(), L"Body2D");
    EXPECT_EQ(element.Text(L"Body2D/@id"), L"body");
    EXPECT_EQ(element.Text(L"Body2D/@name"), L"body");
    const Sensor read = KARMPDisplacementSensor2D::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    Body found;
    EXPECT_EQ(read->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
}

TEST_F(PlanarDisplacementSensorLinks, ThrowForABodyInSpace)
{
    TestDeserializer root;
    root.Add(L"DisplacementSensor2D")
        .Attribute(L"id", L"r")
        .Attribute(L"name", L"r")
        .Attribute(L"isActive", L"yes")
        .Reference(L"Body2D", L"spatial");
    EXPECT_THROW(KARMPDisplacementSensor2D::create(L"")->Deserialize(&root, entities),
                 QOBEInvalidCast);
}

class PlanarDofSensorLinks : public PlanarSensorLinks
{
protected:
    using Sensor = KARMPDofSensor2D;

    static void ExpectBodies(const Sensor& of, const Body& constrained, const Body& reference)
    {
        Body found = constrained;
        EXPECT_EQ(of.GetConstrainedBody(found), constrained ? KARSuccess : KARFailure);
        EXPECT_EQ(found, constrained);
        found = reference;
        EXPECT_EQ(of.GetReferenceBody(found), reference ? KARSuccess : KARFailure);
        EXPECT_EQ(found, reference);
    }

    QOBSharedHandle<ConcreteEntity<Sensor>> sensor = ConcreteEntity<Sensor>::create(L"s");
};

TEST_F(PlanarDofSensorLinks, AreTwoBodiesOrNone)
{
    Body found = body;
    EXPECT_EQ(sensor->GetConstrainedBody(found), KARFailure);
    EXPECT_FALSE(found);
    ExpectBodies(*sensor, nullptr, nullptr);
    EXPECT_EQ(sensor->SetConstrainedBody(body), KARSuccess);
    EXPECT_EQ(sensor->SetReferenceBody(other), KARSuccess);
    ExpectBodies(*sensor, body, other);
    sensor->Reset();
    ExpectBodies(*sensor, body, other);
    ExpectBodies(*sensor->copy(), nullptr, nullptr);
    EXPECT_EQ(sensor->SetConstrainedBody({}), KARSuccess);
    EXPECT_EQ(sensor->SetReferenceBody({}), KARSuccess);
    ExpectBodies(*sensor, nullptr, nullptr);
}

TEST_F(PlanarDofSensorLinks, StandBehindTheFreedomsAndComeBack)
{
    sensor->SetConstrainedBody(body);
    sensor->SetReferenceBody(other);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 4U);
    EXPECT_EQ(element.Child(2).GetId(), L"ConstrainedBody2D");
    EXPECT_EQ(element.Child(3).GetId(), L"ReferenceBody2D");
    EXPECT_EQ(element.Text(L"ConstrainedBody2D/@id"), L"body");
    EXPECT_EQ(element.Text(L"ReferenceBody2D/@id"), L"other");
    const auto read = Sensor::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    ExpectBodies(*read, body, other);
}

TEST_F(PlanarDofSensorLinks, AreThoseOfTheirPlanarNamesAlone)
{
    TestDeserializer root;
    TestDeserializer& element = root.Add(L"DofSensor2D");
    element.Attribute(L"id", L"r").Attribute(L"name", L"r").Attribute(L"isActive", L"yes");
    element.Attribute(L"numberOfDof", 0);
    element.Add(L"Translations2D").Attribute(L"number", 0);
    element.Add(L"Rotations2D").Attribute(L"number", 0);
    element.Reference(L"ConstrainedBody", L"body").Reference(L"ReferenceBody2D", L"spatial");
    const auto read = Sensor::create(L"");
    EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    ExpectBodies(*read, nullptr, nullptr);
}

} // namespace
