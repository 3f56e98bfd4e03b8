// How bodies move, what they need for it, and limbs that others carry.
#include "EditTesting.h"

#include <cmath>
#include <numbers>

using namespace karmp::model;

namespace {

constexpr KARMathVector Z(0.0, 0.0, 1.0);

void ExpectNear(const KARMathVector& found, const KARMathVector& expected)
{
    EXPECT_NEAR((found - expected).Norm(), 0.0, 1e-12)
        << found.GetX() << ' ' << found.GetY() << ' ' << found.GetZ();
}

class MotionTest : public KARMPTestFixture
{
protected:
    Model m_model{"M", {.gravity = {0.0, 0.0, -10.0}}};
};

TEST_F(MotionTest, PointOfATurningBodyMovesAcrossItsArm)
{
    const Motion turning = Motion().Turning(2.0 * Z, std::numbers::pi / 2.0, 3.0, 5.0);
    const Motion end = turning.At({0.5, 0.0, 0.0});
    ExpectNear(end.Origin() - KARMathPoint(), {0.0, 0.5, 0.0});
    ExpectNear(end.velocity, {-1.5, 0.0, 0.0});
    ExpectNear(end.angularVelocity, {0.0, 0.0, 3.0});
    ExpectNear(end.acceleration, {-2.5, -4.5, 0.0});
    // What is pinned there has the motion of the point and a rotation of its own.
    const Motion pinned = end.Turning(Z, 0.0, -1.0);
    ExpectNear(pinned.velocity, end.velocity);
    ExpectNear(pinned.angularVelocity, {0.0, 0.0, -1.0});
    ExpectNear(pinned.position * KARMathVector(1.0, 0.0, 0.0), {1.0, 0.0, 0.0});
    ExpectNear(end.Turning({}, 1.0, 2.0).angularVelocity, {});
}

TEST_F(MotionTest, BodyHasTheMotionThatItIsGiven)
{
    const auto body = m_model.Body("A");
    Motion motion = Motion().Turning(Z, 0.25, 2.0, 3.0);
    motion.velocity = {1.0, 2.0, 3.0};
    motion.acceleration = {4.0, 5.0, 6.0};
    EXPECT_EQ(Move(body, motion), KARSuccess);
    const Motion found = MotionOf(body);
    EXPECT_EQ(found.position, motion.position);
    EXPECT_EQ(found.velocity, motion.velocity);
    EXPECT_EQ(found.angularVelocity, motion.angularVelocity);
    EXPECT_EQ(found.acceleration, motion.acceleration);
    EXPECT_EQ(found.angularAcceleration, motion.angularAcceleration);
}

TEST_F(MotionTest, BodyGetsAllOfAMotionWhenItsLoaderDoesNotFollow)
{
    class Stuck : public BodyLoader
    {
        KARStatus ReleaseBody() override { return KARFailure; }
    };
    const auto body = m_model.Body("A");
    body->SetLoader(new Stuck);
    EXPECT_EQ(Move(body, Motion().At({1.0, 0.0, 0.0}).Turning(Z, 0.5, 2.0, 3.0)), KARFailure);
    EXPECT_EQ(MotionOf(body).angularVelocity, KARMathVector(0.0, 0.0, 2.0));
    EXPECT_EQ(MotionOf(body).angularAcceleration, KARMathVector(0.0, 0.0, 3.0));
}

TEST_F(MotionTest, BodyAtRestNeedsItsWeight)
{
    const auto body = m_model.Body(
        "A", Box(2.0, {1.0, 1.0, 1.0}, {0.5, 0.0, 0.0}).PlacedAt(KARMathPoint(0.0, 1.0, 0.0)));
    EXPECT_EQ(CenterOf(body), KARMathPoint(0.5, 1.0, 0.0));
    const SpatialForce need = NeededForce(body);
    ExpectNear(need.force, {0.0, 0.0, 20.0});
    ExpectNear(need.torque, {});
}

TEST_F(MotionTest, TurningBodyNeedsWhatKeepsItsCentreOnTheCircleAndTurnsItsInertia)
{
    const auto body = m_model.Body(
        "A", {.mass = 2.0,
              .centerOfGravity = KARMathPoint(0.5, 0.0, 0.0),
              .inertia = KARMath3x3Matrix({1.0, 0.0, 0.25}, {0.0, 2.0, 0.0}, {0.25, 0.0, 3.0})});
    Move(body, Motion().Turning(Z, std::numbers::pi / 2.0, 3.0, 4.0));
    const SpatialForce need = NeededForce(body);
    // 2 kg at 0.5 m: along the arm -2 * 0.5 * 9, across it 2 * 0.5 * 4.
    ExpectNear(need.force, {-4.0, -9.0, 20.0});
    // In body axes I a = (1, 0, 12) and w x I w = (0, 9 * 0.25, 0); x of the body is y of the
    // world.
    ExpectNear(need.torque, {-2.25, 1.0, 12.0});
}

TEST_F(MotionTest, LimbStandsWhereTheValueOfItsJointBringsIt)
{
    const auto base =
        m_model.Limb<KARMPRevolute>("Base", "Waist", m_model.Ground(),
                                    {{1.0, 0.0, 0.0}, Z, std::numbers::pi / 2.0}, Ball(1.0, 0.1));
    const auto slide = m_model.Limb<KARMPPrismatic>("Slide", "Guide", base.body,
                                                    {{0.5, 0.0, 0.0}, {2.0, 0.0, 0.0}, 0.25});
    ASSERT_TRUE(slide.joint);
    double mass = 0.0;
    base.body->GetMass(mass);
    EXPECT_EQ(mass, 1.0);
    ExpectNear(PositionOf(slide.body).GetVector(), {1.0, 0.75, 0.0});
    ExpectNear(PositionOf(slide.body) * KARMathVector(1.0, 0.0, 0.0), {0.0, 1.0, 0.0});
    // The frames of the joint are told on each body.
    KARMathAxis frame;
    m_model.Find<KARMPAxisSystem>("Slide.Guide")->GetAxisSystem(frame);
    ExpectNear(frame.GetOrigin() - KARMathPoint(), {});
    ExpectNear(frame.GetThirdDirection(), {1.0, 0.0, 0.0});
    m_model.Find<KARMPAxisSystem>("Base.Guide")->GetAxisSystem(frame);
    ExpectNear(frame.GetOrigin() - KARMathPoint(), {0.5, 0.0, 0.0});
    ExpectNear(FrameOf(m_model.Find<KARMPGeometry>("Base.Guide")).GetThirdDirection(),
               {0.0, 1.0, 0.0});
    EXPECT_TRUE(m_model.Variable("Reach", slide.joint, 0.25));
    EXPECT_EQ(BrokenLinks(m_model), "");
    EXPECT_EQ(Lines(m_model.Check()), "");
}

TEST_F(MotionTest, LimbThatCannotBeCarriedIsNotMade)
{
    const auto ground = m_model.Ground();
    const std::string before = TextOf(m_model);
    EXPECT_FALSE(m_model.Limb<KARMPSpherical>("New", "J", ground, {}).body);
    EXPECT_EQ(m_model.Problems().back().text, "a KARMPSpherical has not one freedom");
    EXPECT_FALSE(m_model.Limb<KARMPRevolute>("New", "J", ground, {.axis = {}}).joint);
    EXPECT_FALSE(m_model.Limb<KARMPRevolute>("New", "J", ground, {.value = std::nan("")}).joint);
    for (const std::size_t problem : {1U, 2U})
        EXPECT_EQ(m_model.Problems().at(problem).text,
                  "the axis of \"J\" has no direction, or its value is not finite");
    EXPECT_FALSE(m_model.Limb<KARMPRevolute>("New", "J", {}, {}).joint);
    EXPECT_FALSE(m_model.Limb<KARMPRevolute>("New", "GlobalBody", ground, {}).body);
    EXPECT_EQ(m_model.Problems().size(), 5U);
    m_model.ClearProblems();
    EXPECT_TRUE(TextOf(m_model) == before);
}

TEST_F(MotionTest, PlateHasTheHalfOfItsInertiaAboutTheAxesInItsPlane)
{
    const BodyOptions plate = Plate(2.0, 3.0, {1.0, 0.0, 0.0});
    EXPECT_EQ(plate.mass, 2.0);
    EXPECT_EQ(*plate.centerOfGravity, KARMathPoint(1.0, 0.0, 0.0));
    EXPECT_EQ(*plate.inertia, KARMath3x3Matrix({1.5, 0.0, 0.0}, {0.0, 1.5, 0.0}, {0.0, 0.0, 3.0}));
    const KARMathTransformation2D place({{0.0, 1.0}, {-1.0, 0.0}}, {1.0, 2.0});
    const auto body =
        m_model.PlanarBody("A", Plate(2.0, 3.0, KARMathPoint2D(1.0, 0.0)).PlacedAt(place));
    KARMath2x2Matrix inertia;
    body->GetInertiaMatrix(inertia);
    EXPECT_EQ(inertia, KARMath2x2Matrix({1.5, 0.0}, {0.0, 1.5}));
    EXPECT_EQ(PositionOf(body), place);
    EXPECT_EQ(InSpace({1.0, 2.0}), KARMathPoint(1.0, 2.0, 0.0));
}

} // namespace
