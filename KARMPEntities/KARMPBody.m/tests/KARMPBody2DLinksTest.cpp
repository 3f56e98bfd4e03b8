#include "Body2DTesting.h"
#include "BodyListTesting.h"

namespace {

using Body2DLinks = Body2DFixture;

TEST_F(Body2DLinks, OfGeometryFollowTheRulesOfLists)
{
    CheckList<KARMPBody2D, KARMPGeometry2D>(
        *NewBody2D(L"b"), [this](const wchar_t* n) { return Keep(KARMPPoint2D::create(n)); },
        &KARMPBody2D::AddGeometry, &KARMPBody2D::RemoveGeometry, &KARMPBody2D::GetGeometry,
        &KARMPBody2D::GetGeometryCount, [this] { ExpectReports(1); });
}

TEST_F(Body2DLinks, OfJointsFollowTheRulesOfLists)
{
    CheckList<KARMPBody2D, KARMPJoint2D>(
        *NewBody2D(L"b"), [this](const wchar_t* n) { return Keep(KARMPUserDefined2D::create(n)); },
        &KARMPBody2D::LinkToJoint, &KARMPBody2D::RemoveJoint, &KARMPBody2D::GetLinkedJoint,
        &KARMPBody2D::GetLinkedJointCount, [this] { ExpectReports(1); });
}

TEST_F(Body2DLinks, OfShapesFollowTheRulesOfLists)
{
    CheckList<KARMPBody2D, KARMPShape2D>(
        *NewBody2D(L"b"), [this](const wchar_t* n) { return New<KARMPShape2D>(n); },
        &KARMPBody2D::LinkToShape, &KARMPBody2D::RemoveShape, &KARMPBody2D::GetLinkedShape,
        &KARMPBody2D::GetLinkedShapeCount, [this] { ExpectReports(1); });
}

TEST_F(Body2DLinks, OfImpactedChildrenFollowTheRulesOfLists)
{
    CheckList<KARMPBody2D, KARMPBody2D>(
        *NewBody2D(L"b"), [this](const wchar_t* n) { return NewBody2D(n); },
        &KARMPBody2D::AddImpactedChildBody, &KARMPBody2D::RemoveBody,
        &KARMPBody2D::GetImpactedChildBody, &KARMPBody2D::GetImpactedChildBodyCount,
        [this] { ExpectReports(1); });
}

TEST_F(Body2DLinks, TheSketchIsOneAndStays)
{
    const Body2D body = NewBody2D(L"b");
    const auto sketch = Keep(KARMPSketch::create(L"s"));
    QOBSharedHandle<KARMPSketch> found(sketch);
    EXPECT_EQ(body->GetSketch(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(body->SetSketch(sketch), KARSuccess);
    EXPECT_EQ(body->SetSketch({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(body->GetSketch(found), KARSuccess);
    EXPECT_EQ(found, sketch);
}

TEST_F(Body2DLinks, TheDisplacementSensorIsOne)
{
    const Body2D body = NewBody2D(L"b");
    const auto sensor = Keep(KARMPDisplacementSensor2D::create(L"s"));
    const auto other = Keep(KARMPDisplacementSensor2D::create(L"o"));
    QOBSharedHandle<KARMPDisplacementSensor2D> found(sensor);
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
    body->SetDisplacementSensor(sensor);
    EXPECT_EQ(body->SetDisplacementSensor({}), KARSuccess);
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
}

TEST_F(Body2DLinks, AreOthersThanThoseOfTheBase)
{
    const Body2D body = NewBody2D(L"b");
    const Body base(body);
    const auto point2D = Keep(KARMPPoint2D::create(L"p"));
    const auto point = Keep(KARMPPoint::create(L"q"));
    body->AddGeometry(point2D);
    EXPECT_EQ(base->GetGeometryCount(), 0);
    base->AddGeometry(point);
    base->AddGeometry(point2D);
    EXPECT_EQ(base->GetGeometryCount(), 2);
    EXPECT_EQ(body->GetGeometryCount(), 1);
    body->AddImpactedChildBody(NewBody2D(L"i"));
    EXPECT_EQ(base->GetImpactedChildBodyCount(), 0);
    const auto sensor = Keep(KARMPDisplacementSensor::create(L"s"));
    base->SetDisplacementSensor(sensor);
    QOBSharedHandle<KARMPDisplacementSensor2D> found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
    // The tree is the base's.
    const Body2D child = NewBody2D(L"c");
    body->AddBody(child);
    Body father;
    child->GetFatherBody(father);
    EXPECT_EQ(father, base);
    base->SetDisplacementSensor({});
}

/// A planar body with one link of each kind, made on both sides.
class LinkedBody2D : public Body2DFixture
{
protected:
    LinkedBody2D()
    {
        body->SetSketch(sketch);
        body->AddGeometry(point);
        point->SetBody(Body2D(body));
        body->LinkToJoint(joint);
        joint->LinkToBody(body, KARMPBodyOrientation::Out);
        body->LinkToShape(shape);
        shape->LinkToBody(Body2D(body));
        body->SetDisplacementSensor(sensor);
        sensor->SetBody(body);
        body->AddImpactedChildBody(impacted);
        impacted->AddImpactedChildBody(body);
        body->AddBody(child);
    }
    bool OthersKnowBody()
    {
        Body2D found;
        const bool sensorKnows = !KARFailed(sensor->GetBody(found));
        ExpectReports(sensorKnows ? 0 : 1);
        return sensorKnows || !KARFailed(point->GetBody(found)) ||
               joint->GetLinkedBodyCount() != 0 || shape->GetLinkedBodyCount() != 0 ||
               impacted->GetImpactedChildBodyCount() != 0;
    }

    QOBSharedHandle<OpenBody2D> body = New<KARMPBody2D>(L"body");
    QOBSharedHandle<KARMPSketch> sketch = Keep(KARMPSketch::create(L"sketch"));
    QOBSharedHandle<KARMPPoint2D> point = Keep(KARMPPoint2D::create(L"point"));
    QOBSharedHandle<KARMPJoint2D> joint{Keep(KARMPUserDefined2D::create(L"joint"))};
    QOBSharedHandle<KARMPShape2D> shape{New<KARMPShape2D>(L"shape")};
    QOBSharedHandle<KARMPDisplacementSensor2D> sensor =
        Keep(KARMPDisplacementSensor2D::create(L"sensor"));
    Body2D impacted = NewBody2D(L"impacted");
    Body2D child = NewBody2D(L"child");
};

TEST_F(LinkedBody2D, RemovesItselfFromAllThatKnowIt)
{
    EXPECT_TRUE(OthersKnowBody());
    EXPECT_EQ(body->RemoveParent(), KARSuccess);
    EXPECT_FALSE(OthersKnowBody());
    // Its own lists, its sketch and its tree stay, but for the sensor.
    EXPECT_EQ(body->GetGeometryCount(), 1);
    EXPECT_EQ(body->GetChildrenBodyCount(), 1);
    QOBSharedHandle<KARMPSketch> foundSketch;
    EXPECT_EQ(body->GetSketch(foundSketch), KARSuccess);
    QOBSharedHandle<KARMPDisplacementSensor2D> found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARFailure);
}

TEST_F(LinkedBody2D, LeavesThoseThatKnowTheBase)
{
    const auto spatial = Keep(KARMPPoint::create(L"spatial"));
    body->KARMPBody::AddGeometry(spatial);
    spatial->SetBody(Body(body));
    EXPECT_EQ(body->RemoveParent(), KARSuccess);
    Body found;
    EXPECT_EQ(spatial->GetBody(found), KARSuccess);
    EXPECT_EQ(found, Body(body));
}

TEST_F(LinkedBody2D, ClearsItsListsAndTreeButNeitherSketchNorSensor)
{
    const Body root = NewBody(L"root");
    root->AddBody(Body(body));
    body->ClearContainers();
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(body->GetLinkedJointCount(), 0);
    EXPECT_EQ(body->GetLinkedShapeCount(), 0);
    EXPECT_EQ(body->GetImpactedChildBodyCount(), 0);
    EXPECT_EQ(body->GetChildrenBodyCount(), 0);
    Body father = root;
    body->GetFatherBody(father);
    EXPECT_FALSE(father);
    QOBSharedHandle<KARMPSketch> foundSketch;
    EXPECT_EQ(body->GetSketch(foundSketch), KARSuccess);
    QOBSharedHandle<KARMPDisplacementSensor2D> found;
    EXPECT_EQ(body->GetDisplacementSensor(found), KARSuccess);
}

TEST_F(LinkedBody2D, IsLetGoByAllWhenOrphaned)
{
    Body(body)->orphanObject();
    EXPECT_FALSE(OthersKnowBody());
    EXPECT_EQ(body->GetGeometryCount(), 0);
    EXPECT_EQ(body->GetChildrenBodyCount(), 0);
}

TEST_F(LinkedBody2D, IsLetGoByAllWhenOneSidedLinksAreThere)
{
    // The other side does not know the body: 1, which is no failure.
    point->RemoveBody(Body2D(body));
    joint->RemoveBody(body);
    EXPECT_EQ(body->RemoveParent(), KARSuccess);
    EXPECT_FALSE(OthersKnowBody());
}

TEST_F(LinkedBody2D, CopiesItsStateWithoutItsLinks)
{
    body->SetPosition(quarterTurn2D());
    body->Set3DPosition(quarterTurn());
    body->SetVelocity({1.0, 2.0}, 4.0);
    body->SetAcceleration({7.0, 8.0}, 10.0);
    body->SetMass(2.5);
    body->SetCenterOfGravity({1.0, 2.0});
    body->SetInertiaMatrix({{1.0, 2.0}, {3.0, 4.0}});
    body->Fix2D();
    body->Fix3D();
    body->KARMPBody::SetMass(3.5);
    const auto copy = body->copy();

    EXPECT_EQ(copy->GetGeometryCount() + copy->GetLinkedJointCount() + copy->GetLinkedShapeCount() +
                  copy->GetImpactedChildBodyCount() + copy->GetChildrenBodyCount(),
              0);
    QOBSharedHandle<KARMPSketch> noSketch;
    EXPECT_EQ(copy->GetSketch(noSketch), KARFailure);
    QOBSharedHandle<KARMPDisplacementSensor2D> noSensor;
    EXPECT_EQ(copy->GetDisplacementSensor(noSensor), KARFailure);

    EXPECT_EQ(positionOf(*copy), quarterTurn2D());
    KARMathTransformation position;
    copy->Get3DPosition(position);
    EXPECT_EQ(position, quarterTurn());
    KARMathVector2D linear;
    double angular = 0.0;
    EXPECT_EQ(copy->GetVelocity(linear, angular), KARFailure);
    KARMathPoint2D at;
    EXPECT_EQ(copy->GetVelocity(linear, angular, at), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D(1.0, 2.0));
    EXPECT_EQ(angular, 4.0);
    copy->GetAcceleration(linear, angular);
    EXPECT_EQ(linear, KARMathVector2D(7.0, 8.0));
    EXPECT_EQ(angular, 10.0);
    double mass = 0.0;
    copy->GetMass(mass);
    EXPECT_EQ(mass, 2.5);
    copy->KARMPBody::GetMass(mass);
    EXPECT_EQ(mass, 3.5);
    KARMathPoint2D center;
    copy->GetCenterOfGravity(center);
    EXPECT_EQ(center, KARMathPoint2D(1.0, 2.0));
    KARMath2x2Matrix inertia;
    copy->GetInertiaMatrix(inertia);
    EXPECT_EQ(inertia, KARMath2x2Matrix({1.0, 2.0}, {3.0, 4.0}));
    EXPECT_TRUE(copy->IsFixed2D() && copy->IsFixed3D());
}

TEST_F(Body2DLinks, ANewBodyIsAsTold)
{
    const Body2D body = NewBody2D(L"b");
    EXPECT_FALSE(body->IsFixed2D() || body->IsFixed3D());
    EXPECT_EQ(positionOf(*body), KARMathTransformation2D());
    double mass = 1.0;
    EXPECT_EQ(body->GetMass(mass), KARSuccess);
    EXPECT_EQ(mass, 0.0);
    KARMath2x2Matrix inertia = KARMath2x2Matrix::Identity();
    EXPECT_EQ(body->GetInertiaMatrix(inertia), KARSuccess);
    EXPECT_EQ(inertia, KARMath2x2Matrix());
    KARMathPoint2D center(1.0, 1.0);
    EXPECT_EQ(body->GetCenterOfGravity(center), KARSuccess);
    EXPECT_EQ(center, KARMathPoint2D());
    KARMathVector2D linear(1.0, 1.0);
    double angular = 1.0;
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure);
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D());
    EXPECT_EQ(angular, 0.0);
}

TEST_F(Body2DLinks, OfATreeEndWhenOrphaned)
{
    const int before = OpenBody2D::Alive();
    {
        const auto father = OpenBody2D::create(L"father");
        const auto child = OpenBody2D::create(L"child");
        father->AddBody(Body(child));
        Body(father)->orphanObject();
        Body(child)->orphanObject();
    }
    EXPECT_EQ(OpenBody2D::Alive(), before);
}

} // namespace
