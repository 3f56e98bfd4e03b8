#include "KARMPJointFramesServices.h"

#include "KARMPAxisSystem.h"
#include "KARMPBody.h"
#include "KARMPJointKinds.h"
#include "KARMPLine.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "RecordingJointLoader.h"

namespace {

using Frames = std::vector<KARMathAxis>;
using Type = KARMPSolverEquivalentJointType;

// A quarter turn about the third direction and a displacement, with exact coefficients.
KARMathTransformation Turned(double x, double y, double z)
{
    return {{{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}, {x, y, z}};
}

KARMathAxis PositionOf(const KARMPBody& body)
{
    KARMathTransformation position;
    body.GetPosition(position);
    return position * KARMathAxis();
}

void ExpectNear(const KARMathAxis& left, const KARMathAxis& right)
{
    const auto expectVectors = [](const KARMathVector& a, const KARMathVector& b) {
        EXPECT_NEAR(a.GetX(), b.GetX(), 1e-12);
        EXPECT_NEAR(a.GetY(), b.GetY(), 1e-12);
        EXPECT_NEAR(a.GetZ(), b.GetZ(), 1e-12);
    };
    expectVectors(left.GetOrigin() - KARMathPoint(), right.GetOrigin() - KARMathPoint());
    expectVectors(left.GetFirstDirection(), right.GetFirstDirection());
    expectVectors(left.GetSecondDirection(), right.GetSecondDirection());
    expectVectors(left.GetThirdDirection(), right.GetThirdDirection());
}

// A joint that is rigid whatever its loader says.
class RigidJoint : public KARMPUserDefined
{
public:
    KARStatus GetSolverEquivalentJointType(Type::Enum& type) const override
    {
        type = Type::Rigid;
        return KARSuccess;
    }
};

// A point that has its body and its coordinates elsewhere.
class LendingPoint : public KARMPPoint
{
public:
    KARStatus GetBody(QOBSharedHandle<KARMPBody>& given) const override
    {
        given = body;
        return KARSuccess;
    }
    KARStatus GetPoint(KARMathPoint& given) const override
    {
        given = {8.0, 9.0, 10.0};
        return KARSuccess;
    }

    QOBSharedHandle<KARMPBody> body;
};

// An axis system that has its coordinates elsewhere.
class LendingAxisSystem : public KARMPAxisSystem
{
public:
    KARStatus GetAxisSystem(KARMathAxis& given) const override
    {
        given = lent;
        return KARSuccess;
    }

    KARMathAxis lent;
};

// A joint of two bodies in a world, with two constraints, and a loader that tells its kind.
class JointFrames : public KARMPTestFixture
{
protected:
    JointFrames()
    {
        a->SetPosition(Turned(1.0, 2.0, 3.0), 0);
        b->SetPosition(Turned(-4.0, 5.0, 6.0), 0);
        joint->SetLoader(loader);
        for (const auto& body : {a, b})
            joint->LinkToBody(body, KARMPBodyOrientation::Out);
        for (const auto& constraint : {first, second})
            joint->AddConstraint(constraint);
        basic->addLogicalChild(joint);
    }

    template <class Geometry>
    QOBSharedHandle<Geometry> Use(const QOBSharedHandle<KARMPConstraint>& constraint,
                                  const QOBSharedHandle<KARMPBody>& body)
    {
        const auto geometry = Geometry::create(L"geometry");
        if (body)
            geometry->SetBody(body);
        constraint->LinkToGeometry(geometry);
        return geometry;
    }
    QOBSharedHandle<KARMPAxisSystem> UseAxis(const QOBSharedHandle<KARMPConstraint>& constraint,
                                             const QOBSharedHandle<KARMPBody>& body, double x)
    {
        const auto axisSystem = Use<KARMPAxisSystem>(constraint, body);
        axisSystem->SetAxisSystem(Axis(x));
        return axisSystem;
    }
    static KARMathAxis Axis(double x)
    {
        return {{x, 0.5, 0.25}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}};
    }
    Frames Compute(Type::Enum type, unsigned char local)
    {
        loader->type = type;
        Frames frames;
        EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(joint.get(), frames, local), KARSuccess);
        return frames;
    }

    LoaderRecord record;
    RecordingJointLoader* loader = new RecordingJointLoader(record);
    QOBSharedHandle<QOBBasicWorld> basic = QOBBasicWorld::create(L"world");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basic);
    QOBSharedHandle<KARMPJoint> joint{KARMPUserDefined::create(L"joint")};
    QOBSharedHandle<KARMPBody> a = KARMPBody::create(L"a");
    QOBSharedHandle<KARMPBody> b = KARMPBody::create(L"b");
    QOBSharedHandle<KARMPConstraint> first{KARMP0DoF::create(L"first")};
    QOBSharedHandle<KARMPConstraint> second{KARMP0DoF::create(L"second")};
};

TEST_F(JointFrames, AnAxisSystemOnABodyIsItsFrameInTheBodysCoordinates)
{
    UseAxis(second, b, 7.0);
    for (const auto type : {Type::Revolute, Type::Cylindrical, Type::Screw}) {
        const Frames frames = Compute(type, 1);
        ASSERT_EQ(frames.size(), 2u);
        EXPECT_EQ(frames[1], Axis(7.0));
        ExpectNear(frames[0], KARMathAxis());
    }
}

TEST_F(JointFrames, AnAxisSystemOnABodyIsMovedWithTheBodyInTheWorldsCoordinates)
{
    UseAxis(second, b, 7.0);
    for (const auto type : {Type::Revolute, Type::Cylindrical, Type::Screw}) {
        const Frames frames = Compute(type, 0);
        ASSERT_EQ(frames.size(), 2u);
        EXPECT_EQ(frames[1], Turned(-4.0, 5.0, 6.0) * Axis(7.0));
        EXPECT_EQ(frames[0], PositionOf(*a));
    }
}

TEST_F(JointFrames, TheFirstAxisSystemInTheOrderOfConstraintsAndGeometriesWins)
{
    Use<KARMPLine>(first, b);
    Use<KARMPPoint>(first, b);
    UseAxis(first, a, 1.0);
    UseAxis(first, b, 2.0);
    UseAxis(first, b, 3.0);
    UseAxis(second, b, 4.0);
    const Frames frames = Compute(Type::Revolute, 1);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0], Axis(1.0));
    EXPECT_EQ(frames[1], Axis(2.0));
}

TEST_F(JointFrames, APointOnABodyMovesTheOriginAndKeepsTheDirections)
{
    Use<KARMPPoint>(second, b)->SetPoint({1.0, 0.0, 2.0});
    for (const auto type : {Type::Spherical, Type::PointOnCurve}) {
        const Frames frames = Compute(type, 0);
        ASSERT_EQ(frames.size(), 2u);
        EXPECT_EQ(frames[0], PositionOf(*a));
        KARMathAxis expected = PositionOf(*b);
        expected.SetOrigin({-4.0, 6.0, 8.0});
        EXPECT_EQ(frames[1], expected);
    }
}

TEST_F(JointFrames, APointOnABodyIsTheOriginInTheBodysCoordinates)
{
    Use<KARMPPoint>(second, b)->SetPoint({1.0, 0.0, 2.0});
    for (const auto type : {Type::Spherical, Type::PointOnCurve}) {
        const Frames frames = Compute(type, 1);
        ASSERT_EQ(frames.size(), 2u);
        KARMathAxis expected;
        expected.SetOrigin({1.0, 0.0, 2.0});
        ExpectNear(frames[1], expected);
    }
}

TEST_F(JointFrames, TheFirstPointInTheOrderOfConstraintsAndGeometriesWins)
{
    UseAxis(first, b, 9.0);
    Use<KARMPPoint>(first, b)->SetPoint({1.0, 0.0, 0.0});
    Use<KARMPPoint>(first, b)->SetPoint({2.0, 0.0, 0.0});
    Use<KARMPPoint>(second, b)->SetPoint({3.0, 0.0, 0.0});
    const Frames frames = Compute(Type::Spherical, 0);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[1].GetOrigin(), KARMathPoint(-4.0, 6.0, 6.0));
}

TEST_F(JointFrames, GeometryOnOtherBodiesAndOnNoneIsPassedOver)
{
    const auto other = KARMPBody::create(L"other");
    Use<KARMPPoint>(first, other)->SetPoint({1.0, 0.0, 0.0});
    Use<KARMPPoint>(first, nullptr)->SetPoint({2.0, 0.0, 0.0});
    UseAxis(first, other, 1.0);
    UseAxis(first, nullptr, 2.0);
    for (const auto type : {Type::Revolute, Type::Spherical}) {
        const Frames frames = Compute(type, 0);
        EXPECT_EQ(frames, (Frames{PositionOf(*a), PositionOf(*b)}));
    }
}

TEST_F(JointFrames, GeometryIsAskedForItsBodyAndItsCoordinates)
{
    auto* const point = new LendingPoint;
    const QOBSharedHandle<KARMPGeometry> handle(point);
    point->body = b;
    first->LinkToGeometry(handle);
    const Frames atPoint = Compute(Type::Spherical, 0);
    ASSERT_EQ(atPoint.size(), 2u);
    EXPECT_EQ(atPoint[1].GetOrigin(), Turned(-4.0, 5.0, 6.0) * KARMathPoint(8.0, 9.0, 10.0));
    auto* const axisSystem = new LendingAxisSystem;
    const QOBSharedHandle<KARMPGeometry> other(axisSystem);
    axisSystem->lent = Axis(7.0);
    axisSystem->SetBody(b);
    second->LinkToGeometry(other);
    const Frames onAxes = Compute(Type::Revolute, 1);
    ASSERT_EQ(onAxes.size(), 2u);
    EXPECT_EQ(onAxes[1], Axis(7.0));
}

TEST_F(JointFrames, AJointIsAskedForItsKind)
{
    const QOBSharedHandle<KARMPJoint> rigid(new RigidJoint);
    rigid->LinkToBody(a, KARMPBodyOrientation::Out);
    basic->addLogicalChild(rigid);
    Frames frames;
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(rigid.get(), frames, 0), KARSuccess);
    EXPECT_EQ(frames, Frames{PositionOf(*a)});
}

TEST_F(JointFrames, BodyKindsTakeTheBodysPositionAndLookAtNoGeometry)
{
    UseAxis(first, a, 1.0);
    Use<KARMPPoint>(first, b)->SetPoint({1.0, 0.0, 0.0});
    for (const auto type : {Type::Rigid, Type::SixDoF}) {
        EXPECT_EQ(Compute(type, 0), (Frames{PositionOf(*a), PositionOf(*b)}));
        const Frames local = Compute(type, 1);
        ASSERT_EQ(local.size(), 2u);
        ExpectNear(local[0], KARMathAxis());
        ExpectNear(local[1], KARMathAxis());
    }
}

TEST_F(JointFrames, TheGlobalBodysFrameIsTheWorldsWhateverTheCoordinates)
{
    world->SetGlobalBody(a);
    UseAxis(first, a, 1.0);
    Use<KARMPPoint>(first, a)->SetPoint({1.0, 0.0, 0.0});
    for (const auto type : {Type::Revolute, Type::Spherical, Type::Rigid}) {
        for (const bool local : {false, true}) {
            const Frames frames = Compute(type, local);
            ASSERT_EQ(frames.size(), 2u);
            EXPECT_EQ(frames[0], KARMathAxis());
        }
    }
}

TEST_F(JointFrames, AWorldWithoutAGlobalBodyTreatsAllBodiesAlike)
{
    world->SetGlobalBody(nullptr);
    EXPECT_EQ(Compute(Type::Rigid, 0), (Frames{PositionOf(*a), PositionOf(*b)}));
}

TEST_F(JointFrames, AJointOutsideAWorldReportsThatAndHasItsFramesAllTheSame)
{
    const QOBSharedHandle<KARMPJoint> lonely(KARMPRigid::create(L"lonely"));
    auto* itsLoader = new RecordingJointLoader(record);
    itsLoader->type = Type::Rigid;
    lonely->SetLoader(itsLoader);
    lonely->LinkToBody(b, KARMPBodyOrientation::Out);
    Frames frames;
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(lonely.get(), frames, 0), KARSuccess);
    EXPECT_EQ(frames, (Frames{PositionOf(*b)}));
    ExpectReports(1);
}

TEST_F(JointFrames, FramesAreAddedToThoseThatAreThere)
{
    loader->type = Type::Rigid;
    Frames frames{Axis(1.0)};
    EXPECT_EQ(joint->GetFrames(frames, 0, 1), KARSuccess);
    EXPECT_EQ(frames, (Frames{Axis(1.0), PositionOf(*a), PositionOf(*b)}));
    EXPECT_EQ(joint->GetFrames(frames, 1, 1), KARSuccess);
    ASSERT_EQ(frames.size(), 5u);
    ExpectNear(frames[3], KARMathAxis());
    ExpectNear(frames[4], KARMathAxis());
}

TEST_F(JointFrames, OnlyTheKindIsAskedOfTheLoaderWhereFramesAreComputed)
{
    Compute(Type::Rigid, 0);
    Compute(Type::Revolute, 0);
    EXPECT_EQ(record.calls, (std::vector<std::string>(2, "ReadSolverEquivalentJointType")));
}

TEST_F(JointFrames, OtherKindsTakeTheLoadersFramesAsTheWorlds)
{
    loader->frames = {Axis(1.0), Axis(2.0)};
    for (const int type : {-1, 1, 7, 9, 16, 18, 20, 22, 24, 31, 33}) {
        EXPECT_EQ(Compute(static_cast<Type::Enum>(type), 0), loader->frames) << type;
        const Frames local = Compute(static_cast<Type::Enum>(type), 1);
        KARMathTransformation inverse;
        Turned(-4.0, 5.0, 6.0).ComputeInverse(inverse);
        ASSERT_EQ(local.size(), 2u);
        EXPECT_EQ(local[1], inverse * Axis(2.0));
    }
}

TEST_F(JointFrames, FramesBeyondTheBodiesHaveNoBodysCoordinates)
{
    loader->frames = {Axis(1.0), Axis(2.0), Axis(3.0)};
    const auto type = static_cast<Type::Enum>(5);
    EXPECT_EQ(Compute(type, 0), loader->frames);
    EXPECT_EQ(Compute(type, 1).size(), 2u);
}

TEST_F(JointFrames, FramesOfAFailingLoaderAreReportedAndDropped)
{
    loader->frames = {Axis(1.0)};
    for (const KARStatus answer : {KARFailure, KARUnchanged}) {
        record.answer = answer;
        Frames frames;
        EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(joint.get(), frames, 0), answer);
        EXPECT_TRUE(frames.empty());
        ExpectReports(1);
        // With frames of earlier joints there is a result all the same.
        frames = {Axis(4.0)};
        EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(joint.get(), frames, 0), KARSuccess);
        EXPECT_EQ(frames, (Frames{Axis(4.0)}));
        ExpectReports(1);
    }
}

TEST_F(JointFrames, AFailingLoaderWithoutFramesGivesItsStatus)
{
    record.answer = KARFailure;
    Frames frames;
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(joint.get(), frames, 0), KARFailure);
    EXPECT_TRUE(frames.empty());
}

TEST_F(JointFrames, ALoaderThatFailsToTellTheKindIsTakenAtItsWord)
{
    record.answer = KARFailure;
    loader->type = Type::Rigid;
    Frames frames;
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(joint.get(), frames, 0), KARSuccess);
    EXPECT_EQ(frames.size(), 2u);
}

TEST_F(JointFrames, AJointWithoutALoaderHasNoFrames)
{
    const QOBSharedHandle<KARMPJoint> bare(KARMPRigid::create(L"bare"));
    bare->LinkToBody(a, KARMPBodyOrientation::Out);
    Frames frames;
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(bare.get(), frames, 0), KARUnchanged);
    EXPECT_TRUE(frames.empty());
}

TEST_F(JointFrames, AJointWithoutBodiesHasNoFrames)
{
    joint->RemoveBody(a);
    joint->RemoveBody(b);
    for (const auto type : {Type::Revolute, Type::Spherical, Type::Rigid}) {
        loader->type = type;
        Frames frames;
        EXPECT_EQ(joint->GetFrames(frames, 0, 1), KARUnchanged);
        EXPECT_TRUE(frames.empty());
    }
}

TEST_F(JointFrames, ANullJointIsReported)
{
    Frames frames{Axis(1.0)};
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(nullptr, frames, 0), KARUnchanged);
    EXPECT_EQ(frames.size(), 1u);
    ExpectReports(1);
}

TEST_F(JointFrames, FramesFollowTheBodiesFromCallToCall)
{
    EXPECT_EQ(Compute(Type::Rigid, 0)[0], PositionOf(*a));
    a->SetPosition(Turned(9.0, 9.0, 9.0), 0);
    EXPECT_EQ(Compute(Type::Rigid, 0)[0].GetOrigin(), KARMathPoint(9.0, 9.0, 9.0));
}

TEST_F(JointFrames, ABodyWhosePositionHasNoInverseKeepsTheWorldsCoordinates)
{
    a->SetPosition(
        {KARMath3x3Matrix({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}), {1.0, 2.0, 3.0}}, 0);
    EXPECT_EQ(Compute(Type::Rigid, 1)[0], PositionOf(*a));
}

// A joint whose loader cannot be fetched once its kind is known.
class FailingFetchJoint : public KARMPRigid
{
public:
    KARStatus GetLoader(KARIMPJointLoader*& loader) const override
    {
        loader = nullptr;
        return KAROutOfMemory;
    }
    using KARMPRigid::GetLoader;
};

TEST_F(JointFrames, AFailingFetchOfTheLoaderGivesItsStatus)
{
    const QOBSharedHandle<FailingFetchJoint> failing(new FailingFetchJoint);
    Frames frames;
    EXPECT_EQ(KARMPJointFramesServices::ComputeFrames(failing.get(), frames, 0), KAROutOfMemory);
    ExpectReports(1);
}

} // namespace
