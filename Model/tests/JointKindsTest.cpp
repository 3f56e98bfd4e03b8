// Every kind of joint and coupling in one call.
#include "KARMPJointTable.h"
#include "ModelTesting.h"

#include <algorithm>
#include <set>

using namespace karmp::model;

namespace {

using JointKindsTest = KARMPTestFixture;

/// The classes of the factory that are derived from a class.
std::set<std::string> Made(bool (*isWanted)(const KARMPEntity& entity))
{
    std::set<std::string> names;
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        QOBSharedHandle<KARMPEntity> entity;
        KARMPFactory::Create(name, entity);
        if (isWanted(*entity))
            names.insert(name);
    }
    return names;
}

TEST_F(JointKindsTest, EachJointOfTheFactoryHasAConstraintThatRealisesIt)
{
    std::set<std::string> listed;
    for (const JointKind& kind : JointKinds())
        EXPECT_TRUE(listed.insert(kind.joint().getName()).second) << kind.joint().getName();
    const auto made = Made([](const KARMPEntity& entity) {
        const bool isCoupling = dynamic_cast<const KARMPCoupling*>(&entity) != nullptr &&
                                dynamic_cast<const KARMPScrew*>(&entity) == nullptr;
        return dynamic_cast<const KARMPJoint*>(&entity) != nullptr && !isCoupling;
    });
    EXPECT_EQ(listed, made);
}

/// Two bodies, of which one is fixed, so that nothing is loose.
struct TwoBodies
{
    TwoBodies()
    {
        a = model.Body("A", {.at = KARMathPoint(1.0, 0.0, 0.0),
                             .towards = KARMathPoint(1.0, 1.0, 0.0),
                             .isFixed = true});
        b = model.Body("B", {.at = KARMathPoint(0.0, 2.0, 0.0)});
    }

    Model model{"Two bodies"};
    Ref<KARMPBody> a;
    Ref<KARMPBody> b;
};

/// The joint is whole, and the model's check finds nothing.
template <class J>
void ExpectWhole(const Model& model, const Ref<J>& joint, int geometries = 2)
{
    ASSERT_TRUE(joint) << (model.Problems().empty() ? "" : model.Problems()[0].text);
    EXPECT_EQ(Lines(model.Check()), "") << J::ClassName();
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
    EXPECT_EQ(joint->GetConstraintCount(), 1);
    QOBSharedHandle<KARMPConstraint> constraint;
    joint->GetConstraint(0, constraint);
    ASSERT_TRUE(constraint);
    EXPECT_EQ(constraint->GetLinkedGeometryCount(), geometries);
    QOBSharedHandle<KARMPJoint> owner;
    constraint->GetJoint(owner);
    EXPECT_EQ(owner, joint.Handle());
}

template <class J>
class SpatialJointTest : public KARMPTestFixture
{};

using SpatialJoints =
    ::testing::Types<KARMPRevolute, KARMPPrismatic, KARMPCylindrical, KARMPSpherical, KARMPPlanar,
                     KARMPUniversal, KARMPScrew, KARMPRigid, KARMPUserDefined, KARMPPointCurve,
                     KARMPPointSurface, KARMPSymmetric>;
TYPED_TEST_SUITE(SpatialJointTest, SpatialJoints);

TYPED_TEST(SpatialJointTest, OneCallMakesItWhole)
{
    TwoBodies two;
    const auto joint =
        two.model.template Joint<TypeParam>("J", two.a, two.b, {0.5, 0.5, 0.0}, {0.0, 1.0, 0.0});
    ExpectWhole(two.model, joint);
}

TYPED_TEST(SpatialJointTest, ParentIsOutAndItsGeometryComesFirst)
{
    TwoBodies two;
    const auto joint =
        two.model.template Joint<TypeParam>("J", two.a, two.b, {0.5, 0.5, 0.0}, {1.0, 0.0, 0.0});
    ASSERT_TRUE(joint);
    QOBSharedHandle<KARMPBody> body;
    KARMPBodyOrientation::Enum orientation{};
    joint->GetLinkedBody(0, body, orientation);
    EXPECT_EQ(body, two.a.Handle());
    EXPECT_EQ(orientation, KARMPBodyOrientation::Out);
    joint->GetLinkedBody(1, body, orientation);
    EXPECT_EQ(body, two.b.Handle());
    EXPECT_EQ(orientation, KARMPBodyOrientation::In);
    QOBSharedHandle<KARMPConstraint> constraint;
    QOBSharedHandle<KARMPGeometry> geometry;
    joint->GetConstraint(0, constraint);
    constraint->GetLinkedGeometry(0, geometry);
    geometry->GetBody(body);
    EXPECT_EQ(body, two.a.Handle());
}

TYPED_TEST(SpatialJointTest, AFreedomGetsAVariableOnce)
{
    TwoBodies two;
    const auto joint = two.model.template Joint<TypeParam>("J", two.a, two.b, {0.5, 0.5, 0.0});
    ASSERT_TRUE(joint);
    const auto freedoms = FindJointKind(TypeParam::ClassInfo())->freedoms;
    for (const char freedom : freedoms) {
        const auto name = "q" + std::to_string(two.model.template All<KARMPVariable>().size());
        const auto variable = two.model.Variable(name, joint, 0.5);
        ASSERT_TRUE(variable);
        EXPECT_EQ(variable->GetPhysicalQuantity(),
                  freedom == 'L' ? KARMPPhysicalQuantity::Length : KARMPPhysicalQuantity::Angle);
    }
    EXPECT_EQ(Lines(two.model.Check()), "");
    EXPECT_FALSE(two.model.Variable("one too many", joint));
}

TEST_F(JointKindsTest, FramesStandWhereTheJointIsTold)
{
    TwoBodies two;
    const auto joint =
        two.model.Joint<KARMPRevolute>("J", two.a, two.b, {0.5, 0.5, 0.0}, {1.0, 0.0, 0.0});
    for (const auto& [body, name] : {std::pair(two.a, "A.J"), std::pair(two.b, "B.J")}) {
        const auto frame = two.model.Find<KARMPAxisSystem>(name);
        ASSERT_TRUE(frame);
        KARMathAxis axis;
        KARMathTransformation position;
        frame->GetAxisSystem(axis);
        body->GetPosition(position);
        EXPECT_EQ((position * axis).GetOrigin(), KARMathPoint(0.5, 0.5, 0.0));
        EXPECT_EQ((position * axis).GetThirdDirection(), KARMathVector(1.0, 0.0, 0.0));
        EXPECT_EQ((position * axis).GetFirstDirection(), KARMathVector(0.0, 1.0, 0.0));
    }
}

template <class J>
class CurveJointTest : public KARMPTestFixture
{};
using CurveJoints = ::testing::Types<KARMPRollCurve, KARMPSlideCurve>;
TYPED_TEST_SUITE(CurveJointTest, CurveJoints);

TYPED_TEST(CurveJointTest, IsMadeFromTwoGeometries)
{
    TwoBodies two;
    const auto line = two.model.template Add<KARMPLine>("line");
    const auto circle = two.model.template Add<KARMPCircle>("circle");
    circle->SetCircle(KARMathCircle({}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, 0.5));
    ASSERT_TRUE(two.model.Link(line, two.a));
    ASSERT_TRUE(two.model.Link(two.b, circle));
    const auto joint = two.model.template Joint<TypeParam>("J", line, circle);
    ExpectWhole(two.model, joint);
    const std::string before = TextOf(two.model);
    EXPECT_FALSE(two.model.template Joint<TypeParam>("K", two.a, two.b, {0.0, 0.0, 0.0}));
    ASSERT_EQ(two.model.Problems().size(), 1U);
    two.model.ClearProblems();
    EXPECT_TRUE(TextOf(two.model) == before);
}

TEST_F(JointKindsTest, PinInThePlaneIsMadeInOneCall)
{
    Model model("Plane");
    const auto rod = model.PlanarBody("Rod", Rod(1.0, {1.0, 0.0}, {1.0, 1.0}));
    const auto pin = model.Joint<KARMPUserDefined2D>("Pin", model.PlanarGround(), rod, {1.0, 0.0});
    ExpectWhole(model, pin);
    const auto point = model.Find<KARMPPoint2D>("Frame.Pin");
    ASSERT_TRUE(point);
    KARMathPoint2D position;
    point->GetPoint(position);
    EXPECT_EQ(position, KARMathPoint2D(1.0, 0.0));
    EXPECT_TRUE(model.Variable("angle", pin, 0.3));
    EXPECT_EQ(Lines(model.Check()), "");
}

template <class C>
class CouplingTest : public KARMPTestFixture
{};
using Couplings = ::testing::Types<KARMPGear, KARMPRack, KARMPCable, KARMPScrew>;
TYPED_TEST_SUITE(CouplingTest, Couplings);

TYPED_TEST(CouplingTest, OneCallMakesItWhole)
{
    TwoBodies two;
    const auto turn =
        two.model.template Joint<KARMPRevolute>("a", two.model.Ground(), two.a, {1.0, 0.0, 0.0});
    const auto slide =
        two.model.template Joint<KARMPPrismatic>("b", two.model.Ground(), two.b, {0.0, 2.0, 0.0});
    const auto p = two.model.Variable("p", turn);
    const auto q = two.model.Variable("q", slide);
    const auto coupling = two.model.template Couple<TypeParam>("C", {{p, 2.5}, {q, 1.0}}, 0.25);
    ExpectWhole(two.model, coupling, 0);
    QOBSharedHandle<KARMPEquation> equation;
    coupling->GetEquation(equation);
    double coefficient = 0.0;
    QOBSharedHandle<KARMPLinearEquation>(equation)->GetLinearTerm(0, coefficient);
    EXPECT_EQ(coefficient, 2.5);
    EXPECT_EQ(equation->GetLinkedVariableCount(), 2);
    QOBSharedHandle<KARMPBody> body;
    coupling->GetLinkedBody(0, body);
    EXPECT_EQ(body, two.a.Handle());
}

TEST_F(JointKindsTest, CouplingWithinOneJointIsOfItsChildAndItsParent)
{
    TwoBodies two;
    const auto joint = two.model.Joint<KARMPCylindrical>("J", two.a, two.b, {0.0, 0.0, 0.0});
    const auto p = two.model.Variable("p", joint);
    const auto q = two.model.Variable("q", joint);
    // A constraint of no joint tells nothing of bodies.
    ASSERT_TRUE(two.model.Link(two.model.Add<KARMPPrismaticConstraint>("loose"), p));
    const auto thread = two.model.Couple<KARMPRack>("C", {{p, 1.0}, {q, 0.5}});
    ASSERT_TRUE(thread);
    ASSERT_EQ(thread->GetLinkedBodyCount(), 2);
    QOBSharedHandle<KARMPBody> body;
    thread->GetLinkedBody(0, body);
    EXPECT_EQ(body, two.b.Handle());
    thread->GetLinkedBody(1, body);
    EXPECT_EQ(body, two.a.Handle());
}

TEST_F(JointKindsTest, EachCouplingOfTheFactoryIsTested)
{
    const auto made = Made([](const KARMPEntity& entity) {
        return dynamic_cast<const KARMPCoupling*>(&entity) != nullptr;
    });
    EXPECT_EQ(made, (std::set<std::string>{"KARMPGear", "KARMPRack", "KARMPCable", "KARMPScrew"}));
}

TEST_F(JointKindsTest, CouplingOfVariablesWithoutJointsIsRefused)
{
    Model model("M");
    const auto p = model.Variable("p", KARMPPhysicalQuantity::Angle);
    const auto q = model.Variable("q", KARMPPhysicalQuantity::Angle);
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Couple<KARMPGear>("G", {{p, 1.0}, {q, 1.0}}));
    EXPECT_FALSE(model.Couple<KARMPGear>("G", {{p, 1.0}}));
    EXPECT_EQ(model.Problems().size(), 2U);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(JointKindsTest, JointOfABodyWithItselfIsRefused)
{
    TwoBodies two;
    const std::string before = TextOf(two.model);
    EXPECT_FALSE(two.model.Joint<KARMPRevolute>("J", two.a, two.a, {0.0, 0.0, 0.0}));
    EXPECT_FALSE(
        two.model.Joint<KARMPRevolute>("J", two.a, two.b, {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}));
    const auto onA = two.model.Point("P", two.a, {0.0, 0.0, 0.0});
    EXPECT_FALSE((two.model.Joint<KARMPRevolute>("J", onA, onA)));
    ASSERT_EQ(two.model.Problems().size(), 3U);
    for (const std::size_t problem : {0U, 2U})
        EXPECT_EQ(two.model.Problems()[problem].text,
                  "a joint needs two bodies; KARMPBody \"A\" is both");
    two.model.ClearProblems();
    EXPECT_TRUE(two.model.Delete(onA));
    EXPECT_TRUE(TextOf(two.model) == before);
}

} // namespace
