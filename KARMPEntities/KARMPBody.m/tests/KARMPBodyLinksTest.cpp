#include "BodyListTesting.h"
#include "BodyTesting.h"

namespace {

using BodyLinks = BodyFixture;

TEST_F(BodyLinks, OfGeometryFollowTheRulesOfLists)
{
    CheckList<KARMPBody, KARMPGeometry>(
        *NewBody(L"b"), [this](const wchar_t* n) { return Keep(KARMPPoint::create(n)); },
        &KARMPBody::AddGeometry, &KARMPBody::RemoveGeometry, &KARMPBody::GetGeometry,
        &KARMPBody::GetGeometryCount, [this] { ExpectReports(1); });
}

TEST_F(BodyLinks, OfJointsFollowTheRulesOfLists)
{
    CheckList<KARMPBody, KARMPJoint>(
        *NewBody(L"b"), [this](const wchar_t* n) { return New<KARMPJoint>(n); },
        &KARMPBody::LinkToJoint, &KARMPBody::RemoveJoint, &KARMPBody::GetLinkedJoint,
        &KARMPBody::GetLinkedJointCount, [this] { ExpectReports(1); });
}

TEST_F(BodyLinks, OfShapesFollowTheRulesOfLists)
{
    CheckList<KARMPBody, KARMPShape>(
        *NewBody(L"b"), [this](const wchar_t* n) { return New<KARMPShape>(n); },
        &KARMPBody::LinkToShape, &KARMPBody::RemoveShape, &KARMPBody::GetLinkedShape,
        &KARMPBody::GetLinkedShapeCount, [this] { ExpectReports(1); });
}

TEST_F(BodyLinks, OfConnectorsFollowTheRulesOfLists)
{
    CheckList<KARMPBody, KARMPConnector>(
        *NewBody(L"b"), [this](const wchar_t* n) { return New<KARMPConnector>(n); },
        &KARMPBody::LinkToConnector, &KARMPBody::RemoveConnector, &KARMPBody::GetLinkedConnector,
        &KARMPBody::GetLinkedConnectorCount, [this] { ExpectReports(1); });
}

TEST_F(BodyLinks, OfImpactedChildrenFollowTheRulesOfLists)
{
    CheckList<KARMPBody, KARMPBody>(
        *NewBody(L"b"), [this](const wchar_t* n) { return NewBody(n); },
        &KARMPBody::AddImpactedChildBody, &KARMPBody::RemoveBody, &KARMPBody::GetImpactedChildBody,
        &KARMPBody::GetImpactedChildBodyCount, [this] { ExpectReports(1); });
}

TEST_F(BodyLinks, AChildThatIsNotImpactedIsNotRemoved)
{
    const Body father = NewBody(L"father");
    const Body child = NewBody(L"child");
    father->AddBody(child);
    EXPECT_EQ(father->RemoveBody(child), KARUnchanged);
    EXPECT_EQ(father->GetChildrenBodyCount(), 1);
}

TEST_F(BodyLinks, AChildKnowsItsFather)
{
    const Body father = NewBody(L"father");
    const Body child = NewBody(L"child");
    Body found = father;
    EXPECT_EQ(child->GetFatherBody(found), KARSuccess);
    EXPECT_FALSE(found);
    EXPECT_EQ(father->AddBody(child), KARSuccess);
    EXPECT_EQ(child->GetFatherBody(found), KARSuccess);
    EXPECT_EQ(found, father);
    EXPECT_EQ(father->GetChildBody(0, found), KARSuccess);
    EXPECT_EQ(found, child);
    EXPECT_EQ(father->GetChildBody(1, found), KARFailure);
    EXPECT_FALSE(found);
    found = child;
    EXPECT_EQ(father->GetChildBody(-1, found), KARFailure);
    EXPECT_FALSE(found);
}

TEST_F(BodyLinks, ANullChildIsAFailureWithoutAReport)
{
    const Body father = NewBody(L"father");
    EXPECT_EQ(father->AddBody({}), KARFailure);
    EXPECT_EQ(father->GetChildrenBodyCount(), 0);
}

TEST_F(BodyLinks, AChildKeepsTheFatherThatItHas)
{
    const Body father = NewBody(L"father");
    const Body other = NewBody(L"other");
    const Body child = NewBody(L"child");
    father->AddBody(child);
    EXPECT_EQ(other->AddBody(child), KARSuccess);
    ExpectReports(1);
    Body found;
    child->GetFatherBody(found);
    EXPECT_EQ(found, father);
    EXPECT_EQ(other->GetChildrenBodyCount(), 1);
}

TEST_F(BodyLinks, AChildAddedTwiceIsListedTwice)
{
    const Body father = NewBody(L"father");
    const Body child = NewBody(L"child");
    EXPECT_EQ(father->AddBody(child), KARSuccess);
    EXPECT_EQ(father->AddBody(child), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(father->GetChildrenBodyCount(), 2);
}

TEST_F(BodyLinks, TheDisplacementSensorIsOne)
{
    const Body body = NewBody(L"b");
    const auto sensor = Keep(KARMPDisplacementSensor::create(L"s"));
    const auto other = Keep(KARMPDisplacementSensor::create(L"o"));
    QOBSharedHandle<KARMPDisplacementSensor> found(sensor);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(body->SetDisplacementSensor(sensor), KARSuccess);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
    EXPECT_EQ(found, sensor);
    EXPECT_EQ(body->RemoveDisplacementSensor(other), KARSuccess);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
    EXPECT_EQ(body->RemoveDisplacementSensor({}), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
    EXPECT_EQ(body->RemoveDisplacementSensor(sensor), KARSuccess);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
}

TEST_F(BodyLinks, ANullDisplacementSensorReplacesTheStoredOneWithoutAReport)
{
    const Body body = NewBody(L"b");
    const auto sensor = Keep(KARMPDisplacementSensor::create(L"s"));
    body->SetDisplacementSensor(sensor);
    EXPECT_EQ(body->SetDisplacementSensor({}), KARSuccess);
    QOBSharedHandle<KARMPDisplacementSensor> found(sensor);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
    EXPECT_FALSE(found);
}

/// A body with one link of each kind, made on both sides.
class LinkedBody : public BodyFixture
{
protected:
    LinkedBody()
    {
        body->AddGeometry(point);
        point->SetBody(body);
        body->LinkToJoint(joint);
        joint->LinkToBody(body, KARMPBodyOrientation::Out);
        body->LinkToShape(shape);
        shape->LinkToBody(body);
        body->LinkToConnector(connector);
        connector->SetSecondBody(body);
        body->SetDisplacementSensor(sensor);
        sensor->SetBody(body);
        body->AddImpactedChildBody(impacted);
        impacted->AddImpactedChildBody(body);
        body->AddBody(child);
    }
    bool OthersKnowBody()
    {
        Body found;
        const bool sensorKnows = !KARFailed(sensor->GetBody(found));
        ExpectReports(sensorKnows ? 0 : 1);
        return sensorKnows || !KARFailed(point->GetBody(found)) ||
               joint->GetLinkedBodyCount() != 0 || shape->GetLinkedBodyCount() != 0 ||
               !KARFailed(connector->GetSecondBody(found)) ||
               impacted->GetImpactedChildBodyCount() != 0;
    }

    QOBSharedHandle<OpenBody> body = New<KARMPBody>(L"body");
    QOBSharedHandle<KARMPPoint> point = Keep(KARMPPoint::create(L"point"));
    QOBSharedHandle<KARMPJoint> joint{New<KARMPJoint>(L"joint")};
    QOBSharedHandle<KARMPShape> shape{New<KARMPShape>(L"shape")};
    QOBSharedHandle<KARMPConnector> connector{New<KARMPConnector>(L"connector")};
    QOBSharedHandle<KARMPDisplacementSensor> sensor =
        Keep(KARMPDisplacementSensor::create(L"sensor"));
    Body impacted = NewBody(L"impacted");
    Body child = NewBody(L"child");
};

TEST_F(LinkedBody, RemovesItselfFromAllThatKnowIt)
{
    EXPECT_TRUE(OthersKnowBody());
    EXPECT_EQ(body->RemoveParent(), KARSuccess);
    EXPECT_FALSE(OthersKnowBody());
    // Its own lists and its tree stay, but for the sensor.
    EXPECT_EQ(body->GetGeometryCount(), 1);
    EXPECT_EQ(body->GetChildrenBodyCount(), 1);
    Body father;
    child->GetFatherBody(father);
    EXPECT_EQ(father, body);
    QOBSharedHandle<KARMPDisplacementSensor> found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
}

TEST_F(LinkedBody, ClearsItsListsButNotTheSensor)
{
    const Body root = NewBody(L"root");
    root->AddBody(Body(body));
    body->ClearContainers();
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(body->GetLinkedJointCount(), 0);
    EXPECT_EQ(body->GetLinkedShapeCount(), 0);
    EXPECT_EQ(body->GetLinkedConnectorCount(), 0);
    EXPECT_EQ(body->GetImpactedChildBodyCount(), 0);
    EXPECT_EQ(body->GetChildrenBodyCount(), 0);
    Body father = root;
    body->GetFatherBody(father);
    EXPECT_FALSE(father);
    QOBSharedHandle<KARMPDisplacementSensor> found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
}

TEST_F(LinkedBody, IsLetGoByAllWhenOrphaned)
{
    body->orphanObject();
    EXPECT_FALSE(OthersKnowBody());
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(body->GetChildrenBodyCount(), 0);
    body->LinkToShape(shape);
    body->orphanObject();
    EXPECT_EQ(body->GetLinkedShapeCount(), 1) << "the teardown runs once";
    body->RemoveShape(shape);
}

TEST_F(LinkedBody, IsLetGoByAllWhenOneSidedLinksAreThere)
{
    // The other side does not know the body: 1, which is no failure.
    point->RemoveBody(body);
    shape->RemoveBody(body);
    EXPECT_EQ(body->RemoveParent(), KARSuccess);
    EXPECT_FALSE(OthersKnowBody());
}

TEST_F(LinkedBody, CopiesItsStateWithoutItsLinks)
{
    body->SetPosition(quarterTurn(), 0);
    body->SetVelocity({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    body->SetAcceleration({7.0, 8.0, 9.0}, {10.0, 11.0, 12.0});
    body->SetMass(2.5);
    body->SetCenterOfGravity({1.0, 1.0, 2.0});
    body->SetInertiaMatrix(KARMath3x3Matrix::Identity());
    body->SetFilePath("a/b");
    body->Fix();
    body->SetFloating(false);
    body->SetOutOfWorld(true);
    body->SetWDMBody(QOBBasicBody3D::create(L"neighbour"));
    body->SetFloating(false);
    const auto copy = body->copy();

    EXPECT_EQ(copy->GetGeometryCount(), 0);
    EXPECT_EQ(copy->GetLinkedJointCount(), 0);
    EXPECT_EQ(copy->GetLinkedShapeCount(), 0);
    EXPECT_EQ(copy->GetLinkedConnectorCount(), 0);
    EXPECT_EQ(copy->GetImpactedChildBodyCount(), 0);
    EXPECT_EQ(copy->GetChildrenBodyCount(), 0);
    QOBSharedHandle<KARMPDisplacementSensor> noSensor;
    EXPECT_EQ(copy->GetDisplacementSensor(noSensor), KARFailure);

    KARMathVector linear;
    KARMathVector angular;
    EXPECT_EQ(copy->GetVelocity(linear, angular), KARFailure);
    KARMathPoint point3;
    EXPECT_EQ(copy->GetVelocity(linear, angular, point3), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(1.0, 2.0, 3.0));
    EXPECT_EQ(angular, KARMathVector(4.0, 5.0, 6.0));
    copy->GetAcceleration(linear, angular);
    EXPECT_EQ(linear, KARMathVector(7.0, 8.0, 9.0));
    EXPECT_EQ(angular, KARMathVector(10.0, 11.0, 12.0));
    double mass = 0.0;
    copy->GetMass(mass);
    EXPECT_EQ(mass, 2.5);
    KARMathPoint center;
    copy->GetCenterOfGravity(center);
    EXPECT_EQ(center, KARMathPoint(1.0, 1.0, 2.0));
    KARMath3x3Matrix inertia;
    copy->GetInertiaMatrix(inertia);
    EXPECT_EQ(inertia, KARMath3x3Matrix::Identity());
    EXPECT_TRUE(copy->GetFilePath() == KARUnicodeString("a/b"));
    EXPECT_TRUE(copy->IsFixed());
    EXPECT_FALSE(copy->IsFloating());
    bool outOfWorld = true;
    copy->IsOutOfWorld(outOfWorld);
    EXPECT_FALSE(outOfWorld);
    // No neighbour: the position is the stored one, which was the neighbour's when it came.
    copy->SetPosition(shift(9.0), 1);
    EXPECT_EQ(positionOf(*copy), shift(9.0));
    EXPECT_EQ(positionOf(*body), KARMathTransformation());
    // The floating status of the source's neighbour is not known to the copy.
    copy->SetFloating(true);
    copy->Restore_Initial_WDMBody_Floating_status();
    EXPECT_FALSE(copy->IsFloating());
}

TEST_F(BodyLinks, ANewBodyIsAsTold)
{
    const Body body = NewBody(L"b");
    EXPECT_FALSE(body->IsFixed());
    EXPECT_TRUE(body->IsFloating());
    bool outOfWorld = true;
    EXPECT_EQ(body->IsOutOfWorld(outOfWorld), KARSuccess);
    EXPECT_FALSE(outOfWorld);
    EXPECT_EQ(positionOf(*body), KARMathTransformation());
    double mass = 1.0;
    EXPECT_EQ(body->GetMass(mass), KARSuccess);
    EXPECT_EQ(mass, 0.0);
    KARMath3x3Matrix inertia = KARMath3x3Matrix::Identity();
    EXPECT_EQ(body->GetInertiaMatrix(inertia), KARSuccess);
    EXPECT_EQ(inertia, KARMath3x3Matrix());
    KARMathPoint center(1.0, 1.0, 1.0);
    EXPECT_EQ(body->GetCenterOfGravity(center), KARSuccess);
    EXPECT_EQ(center, KARMathPoint());
    KARMathVector linear(1.0, 1.0, 1.0);
    KARMathVector angular(1.0, 1.0, 1.0);
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure);
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector());
    EXPECT_EQ(angular, KARMathVector());
}

TEST_F(BodyLinks, ALongRowOfBodiesDiesWithItsFirst)
{
    constexpr int Length = 100000;
    const int before = OpenBody::Alive();
    QOBSharedHandle<OpenBody> first = OpenBody::create(L"0");
    QOBSharedHandle<OpenBody> last = first;
    for (int i = 1; i < Length; ++i) {
        const auto next = QOBSharedHandle<OpenBody>(OpenBody::create(L"x"));
        last->AddImpactedChildBody(Body(next));
        last = next;
    }
    last.detach();
    EXPECT_EQ(OpenBody::Alive(), before + Length);
    first.detach();
    EXPECT_EQ(OpenBody::Alive(), before);
}

} // namespace
