// What a filtered clone makes of the links of a planar mechanism.
#include "CloneTesting.h"
#include "KARMPBody2D.h"
#include "KARMPCoincidence.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "KARMPShapeBody.h"
#include "KARMPSketch.h"
#include "KARMPUserDefined2D.h"

namespace {

// Two planar bodies with a joint, which is realised by a constraint.
class FilteredPlanarClone : public CloneFixture
{
protected:
    FilteredPlanarClone()
    {
        joint->LinkToBody(first, KARMPBodyOrientation::In);
        joint->LinkToBody(second, KARMPBodyOrientation::Out);
        joint->AddConstraint(constraint);
        first->LinkToJoint(joint);
        second->LinkToJoint(joint);
        constraint->SetJoint(joint);
    }
    template <class T, class Family>
    static QOBSharedHandle<T> PlanarNamed(const KARMPWorld& clone, const std::wstring& name)
    {
        return QOBSharedHandle<T>(Named<Family>(clone, name));
    }

    const QOBSharedHandle<KARMPBody2D> first = File<KARMPBody>(KARMPBody2D::create(L"first"));
    const QOBSharedHandle<KARMPBody2D> second = File<KARMPBody>(KARMPBody2D::create(L"second"));
    const QOBSharedHandle<KARMPUserDefined2D> joint =
        File<KARMPJoint>(KARMPUserDefined2D::create(L"joint"));
    const QOBSharedHandle<KARMPConstraint> constraint{
        File<KARMPConstraint>(KARMPCoincidence::create(L"constraint"))};
};

TEST_F(FilteredPlanarClone, LinksAPlanarJointToItsBodiesAndConstraints)
{
    const auto clone = CloneOf({joint, constraint, first, second});
    const auto duplicate = PlanarNamed<KARMPJoint2D, KARMPJoint>(*clone, L"joint");
    ASSERT_EQ(duplicate->GetLinkedBodyCount(), 2);
    QOBSharedHandle<KARMPBody2D> body;
    KARMPBodyOrientation::Enum orientation{};
    duplicate->GetLinkedBody(0, body, orientation);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"first"));
    EXPECT_EQ(orientation, KARMPBodyOrientation::In);
    duplicate->GetLinkedBody(1, body, orientation);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"second"));
    EXPECT_EQ(orientation, KARMPBodyOrientation::Out);
    ASSERT_EQ(duplicate->GetConstraintCount(), 1);
    QOBSharedHandle<KARMPConstraint> linked;
    duplicate->GetConstraint(0, linked);
    EXPECT_EQ(linked, Named<KARMPConstraint>(*clone, L""));
    const KARMPJoint& base = *duplicate;
    EXPECT_EQ(base.GetLinkedBodyCount(), 0);
    EXPECT_EQ(base.GetConstraintCount(), 0);
    QOBSharedHandle<KARMPJoint> owner;
    EXPECT_EQ(linked->GetJoint(owner), KARSuccess);
    EXPECT_EQ(owner, duplicate);
}

TEST_F(FilteredPlanarClone, DropsTheLinksThatLeadOutOfTheList)
{
    const auto clone = CloneOf({joint, second});
    const auto duplicate = PlanarNamed<KARMPJoint2D, KARMPJoint>(*clone, L"joint");
    ASSERT_EQ(duplicate->GetLinkedBodyCount(), 1);
    QOBSharedHandle<KARMPBody2D> body;
    duplicate->GetLinkedBody(0, body);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"second"));
    EXPECT_EQ(duplicate->GetConstraintCount(), 0);
}

TEST_F(FilteredPlanarClone, LinksAPlanarBodyToWhatItHasInPlaneAndSpace)
{
    const auto sketch = File<KARMPGeometry>(KARMPSketch::create(L"sketch"));
    const auto point = File<KARMPGeometry>(KARMPPoint2D::create(L"point"));
    const auto inSpace = File<KARMPGeometry>(KARMPPoint::create(L"in space"));
    const auto shape = File<KARMPShape>(KARMPShapeBody::create(L"shape"));
    const auto sensor = File<KARMPSensor>(KARMPDisplacementSensor2D::create(L"sensor"));
    first->SetSketch(sketch);
    first->AddGeometry(point);
    first->KARMPBody::AddGeometry(inSpace);
    first->SetDisplacementSensor(sensor);
    first->LinkToShape(shape);
    shape->LinkToBody(first);
    const auto clone = CloneOf({first, joint, sketch, point, inSpace, sensor, shape});
    const auto duplicate = PlanarNamed<KARMPBody2D, KARMPBody>(*clone, L"first");
    QOBSharedHandle<KARMPSketch> foundSketch;
    EXPECT_EQ(duplicate->GetSketch(foundSketch), KARSuccess);
    EXPECT_EQ(foundSketch, Named<KARMPGeometry>(*clone, L"sketch"));
    QOBSharedHandle<KARMPGeometry2D> foundPoint;
    EXPECT_EQ(duplicate->GetGeometry(0, foundPoint), KARSuccess);
    EXPECT_EQ(foundPoint, Named<KARMPGeometry>(*clone, L"point"));
    QOBSharedHandle<KARMPGeometry> foundInSpace;
    EXPECT_EQ(duplicate->KARMPBody::GetGeometry(0, foundInSpace), KARSuccess);
    EXPECT_EQ(foundInSpace, Named<KARMPGeometry>(*clone, L"in space"));
    QOBSharedHandle<KARMPJoint2D> foundJoint;
    EXPECT_EQ(duplicate->GetLinkedJoint(0, foundJoint), KARSuccess);
    EXPECT_EQ(foundJoint, Named<KARMPJoint>(*clone, L"joint"));
    QOBSharedHandle<KARMPDisplacementSensor2D> foundSensor;
    EXPECT_EQ(duplicate->GetDisplacementSensor(foundSensor), KARSuccess);
    EXPECT_EQ(foundSensor, Named<KARMPSensor>(*clone, L"sensor"));
    QOBSharedHandle<KARMPShape2D> foundShape;
    EXPECT_EQ(duplicate->GetLinkedShape(0, foundShape), KARSuccess);
    EXPECT_EQ(foundShape, Named<KARMPShape>(*clone, L"shape"));
    QOBSharedHandle<KARMPBody2D> shaped;
    EXPECT_EQ(foundShape->GetLinkedBody(0, shaped), KARSuccess);
    EXPECT_EQ(shaped, duplicate);
}

TEST_F(FilteredPlanarClone, LinksAPlanarGeometryToBodySketchAndConstraints)
{
    const auto sketch = File<KARMPGeometry>(KARMPSketch::create(L"sketch"));
    const auto point = File<KARMPGeometry>(KARMPPoint2D::create(L"point"));
    point->SetBody(first);
    point->SetSketch(sketch);
    point->LinkToConstraint(constraint);
    const auto clone = CloneOf({point, first, sketch, constraint});
    const auto duplicate = PlanarNamed<KARMPPoint2D, KARMPGeometry>(*clone, L"point");
    QOBSharedHandle<KARMPBody2D> body;
    EXPECT_EQ(duplicate->GetBody(body), KARSuccess);
    EXPECT_EQ(body, Named<KARMPBody>(*clone, L"first"));
    QOBSharedHandle<KARMPBody> inSpace;
    EXPECT_EQ(duplicate->GetBody(inSpace), KARFailure);
    QOBSharedHandle<KARMPSketch> foundSketch;
    EXPECT_EQ(duplicate->GetSketch(foundSketch), KARSuccess);
    EXPECT_EQ(foundSketch, Named<KARMPGeometry>(*clone, L"sketch"));
    EXPECT_EQ(duplicate->GetLinkedConstraintCount(), 1);
}

} // namespace
