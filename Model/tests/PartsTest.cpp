// Bodies of solids, joints between two frames, values, motors, connectors and geometries.
#include "EditTesting.h"

#include <array>
#include <cmath>

using namespace karmp::model;

namespace {

using Quantity = KARMPPhysicalQuantity;

class PartsTest : public KARMPTestFixture
{
protected:
    Model m_model{"M"};
    Ref<KARMPBody> m_body = m_model.Body("Bar", {.mass = 1.0, .at = KARMathPoint(1.0, 0.0, 0.0)});
    Ref<KARMPVariable> m_angle = m_model.Variable(
        "angle", m_model.Joint<KARMPRevolute>("J", m_model.Ground(), m_body, {1.0, 0.0, 0.0}));
};

TEST_F(PartsTest, SolidHasTheInertiaOfItsShapeAboutItsCentre)
{
    const BodyOptions box = Box(12.0, {1.0, 2.0, 3.0}, {0.5, 0.0, 0.0});
    EXPECT_EQ(box.mass, 12.0);
    EXPECT_EQ(*box.centerOfGravity, KARMathPoint(0.5, 0.0, 0.0));
    EXPECT_EQ(*box.inertia, KARMath3x3Matrix({13.0, 0.0, 0.0}, {0.0, 10.0, 0.0}, {0.0, 0.0, 5.0}));
    const BodyOptions wheel = Cylinder(2.0, 1.0, 3.0);
    EXPECT_EQ(*wheel.inertia, KARMath3x3Matrix({2.0, 0.0, 0.0}, {0.0, 2.0, 0.0}, {0.0, 0.0, 1.0}));
    EXPECT_DOUBLE_EQ((*Ball(5.0, 0.5).inertia)(1, 1), 0.5);
}

TEST_F(PartsTest, TwoSolidsWeighTogetherAsOneBodyOfBoth)
{
    // Two halves of a box side by side are the box.
    const BodyOptions whole = Together(Box(3.0, {1.0, 0.5, 0.25}, {0.5, 0.0, 0.0}),
                                       Box(3.0, {1.0, 0.5, 0.25}, {1.5, 0.0, 0.0}));
    const BodyOptions box = Box(6.0, {2.0, 0.5, 0.25});
    EXPECT_EQ(whole.mass, 6.0);
    EXPECT_EQ(*whole.centerOfGravity, KARMathPoint(1.0, 0.0, 0.0));
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR((*whole.inertia)(i, j), (*box.inertia)(i, j), 1e-15);
}

TEST_F(PartsTest, BodyWithoutACentreOrAnInertiaCountsAsAPointAtItsOrigin)
{
    const BodyOptions whole =
        Together({.mass = 1.0, .at = KARMathPoint(1.0, 0.0, 0.0)},
                 {.mass = 3.0, .centerOfGravity = KARMathPoint(4.0, 0.0, 0.0)});
    EXPECT_EQ(*whole.centerOfGravity, KARMathPoint(3.0, 0.0, 0.0));
    EXPECT_EQ(*whole.inertia,
              KARMath3x3Matrix({0.0, 0.0, 0.0}, {0.0, 12.0, 0.0}, {0.0, 0.0, 12.0}));
    EXPECT_EQ(*whole.at, KARMathPoint(1.0, 0.0, 0.0));
    const BodyOptions none = Together({}, {});
    EXPECT_EQ(none.mass, 0.0);
    EXPECT_EQ(*none.centerOfGravity, KARMathPoint());
    EXPECT_EQ(*Ball(1.0, 1.0, {1.0, 2.0, 3.0}).centerOfGravity, KARMathPoint(1.0, 2.0, 3.0));
}

TEST_F(PartsTest, RodInThePlaneHasItsCentreInTheMiddleAndItsInertiaAcross)
{
    const auto rod = m_model.PlanarBody("Rod", Rod(6.0, KARMathPoint2D(1.0, 0.0), {1.0, 2.0}));
    KARMathPoint2D centre;
    KARMath2x2Matrix inertia;
    rod->GetCenterOfGravity(centre);
    rod->GetInertiaMatrix(inertia);
    EXPECT_EQ(centre, KARMathPoint2D(1.0, 0.0));
    EXPECT_EQ(inertia, KARMath2x2Matrix({0.0, 0.0}, {0.0, 2.0}));
    EXPECT_EQ(PositionOf(rod) * centre, KARMathPoint2D(1.0, 1.0));
}

TEST_F(PartsTest, RodsMeetOnTheLeftOfTheWayFromTheFirstToTheSecond)
{
    const KARMathPoint from(1.0, 0.0, 0.0);
    const KARMathPoint to(6.0, 0.0, 0.0);
    const auto meeting = MeetingPoint(from, 3.0, to, 4.0);
    ASSERT_TRUE(meeting);
    EXPECT_NEAR((*meeting - KARMathPoint(2.8, 2.4, 0.0)).Norm(), 0.0, 1e-15);
    EXPECT_LT(MeetingPoint(to, 4.0, from, 3.0)->GetY(), 0.0);
    EXPECT_EQ(MeetingPoint(from, 2.0, to, 3.0), KARMathPoint(3.0, 0.0, 0.0));
    EXPECT_FALSE(MeetingPoint(from, 2.0, to, 2.9));
    EXPECT_FALSE(MeetingPoint(from, 2.0, from, 2.0));
}

TEST_F(PartsTest, FrameAlongAnAxisOfTheWorldHasTheWorldsDirectionsInACircle)
{
    const std::array<KARMathVector, 3> world{
        KARMathVector(1.0, 0.0, 0.0), {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    for (std::size_t i = 0; i < 3; ++i)
        for (const double length : {3.0, -3.0}) {
            const auto frame = FrameAlong({}, length * world[i]);
            ASSERT_TRUE(frame);
            EXPECT_EQ(KARMathVector(frame->GetFirstDirection()), world[(i + 1) % 3]);
            EXPECT_EQ(KARMathVector(frame->GetSecondDirection()),
                      length > 0.0 ? world[(i + 2) % 3] : -world[(i + 2) % 3]);
        }
    // Between two of them it is a frame all the same.
    for (const KARMathVector& axis :
         {KARMathVector(1.0, 1.0, 0.0), {0.0, 1.0, 1.0}, {1.0, 0.0, 1.0}, {2.0, 1.0, -1.0}})
        EXPECT_TRUE(m_model.Frame("F" + std::to_string(m_body->GetGeometryCount()), m_body,
                                  *FrameAlong({}, axis)));
    EXPECT_FALSE(FrameAlong({}, {}));
}

TEST_F(PartsTest, BodyStandsWhereItsSolidIsPlaced)
{
    const auto rod = m_model.Body(
        "Rod", Ball(1.0, 0.1).PlacedAt(KARMathPoint(1.0, 2.0, 0.0), KARMathPoint(1.0, 5.0, 0.0)));
    EXPECT_EQ(PositionOf(rod) * KARMathPoint(2.0, 0.0, 0.0), KARMathPoint(1.0, 4.0, 0.0));
    const KARMathTransformation position(KARMathVector(0.0, 0.0, 3.0));
    const BodyOptions placed = Box(1.0, {}).PlacedAt(position);
    EXPECT_EQ(PositionOf(m_model.Body("Box", placed)), position);
    EXPECT_EQ(PositionOf(m_model.Body("Again", placed.PlacedAt(KARMathPoint(1.0, 2.0, 0.0)))),
              KARMathTransformation(KARMathVector(1.0, 2.0, 0.0)));
    // In place of where a rod stands and looks.
    const BodyOptions moved = Rod(1.0, {}, {0.0, 1.0, 0.0}).PlacedAt(position);
    EXPECT_EQ(PositionOf(m_model.Body("Moved", moved)), position);
    const auto flat = m_model.PlanarBody("Flat", {.at = KARMathPoint2D(1.0, 2.0)});
    EXPECT_EQ(PositionOf(flat).GetVector(), KARMathVector2D(1.0, 2.0));
}

TEST_F(PartsTest, JointOfTwoFramesStandsAtWhatIsBetweenThem)
{
    const auto slide = m_model.Body("Slide", {.at = KARMathPoint(1.5, 0.0, 0.0)});
    const KARMathAxis along({1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0});
    KARMathAxis moved = along;
    moved.SetOrigin({1.5, 0.0, 0.0});
    ASSERT_TRUE(m_model.Joint<KARMPPrismatic>("P", m_body, slide, along, moved));
    KARMathAxis found;
    m_model.Find<KARMPAxisSystem>("Bar.P")->GetAxisSystem(found);
    EXPECT_EQ(found.GetOrigin(), KARMathPoint());
    m_model.Find<KARMPAxisSystem>("Slide.P")->GetAxisSystem(found);
    EXPECT_EQ(found.GetOrigin(), KARMathPoint());
    EXPECT_EQ(found.GetThirdDirection(), KARMathVector(1.0, 0.0, 0.0));
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(PartsTest, JointIsRealisedByTheConstraintThatIsAskedFor)
{
    const auto cam = m_model.PlanarBody("Cam");
    const auto disc = m_model.Attach<KARMPCircle2D>("Disc", cam);
    const auto face = m_model.Attach<KARMPLine2D>("Face", m_model.PlanarBody("Follower"));
    QOBSharedHandle<KARMPSketch> sketch;
    EXPECT_EQ(disc->GetSketch(sketch), KARSuccess);
    ASSERT_TRUE((m_model.Joint<KARMPUserDefined2D, KARMPTangency>("Contact", disc, face)));
    EXPECT_TRUE(m_model.Find<KARMPTangency>("Contact.constraint"));
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(PartsTest, ConstantIsTakenWhereAHandleOnAValueIs)
{
    const auto spring = m_model.Connect<KARMPLinearSpring>(
        "Spring", m_model.Point("C", m_model.Ground(), {}), m_model.Point("D", m_body, {}));
    ASSERT_EQ(spring->SetStiffness(m_model.Constant("k", Quantity::LinearStiffness, 4530.0)),
              KARSuccess);
    double stiffness = 0.0;
    EXPECT_EQ(spring->GetStiffness(stiffness), KARSuccess);
    EXPECT_EQ(stiffness, 4530.0);
    QOBSharedHandle<KARMPBody> body;
    spring->GetSecondBody(body);
    EXPECT_EQ(body, m_body.Handle());
    EXPECT_EQ(spring->GetLinkedGeometryCount(), 2);
    EXPECT_EQ(BrokenLinks(m_model), "");
}

TEST_F(PartsTest, SpringIsAttachedWhereItsGeometriesAre)
{
    const KARMathPoint at(1.0, 2.0, 0.0);
    const auto spring = m_model.Connect<KARMPLinearSpring>(
        "Spring", m_model.Point("C", m_model.Ground(), at), m_model.Point("D", m_body, at));
    KARMathPoint point;
    spring->GetFirstAttachment(point);
    EXPECT_EQ(point, at);
    spring->GetSecondAttachment(point);
    EXPECT_EQ(point, KARMathPoint(0.0, 2.0, 0.0));
    const KARMathAxis axis = *FrameAlong(at, {1.0, 0.0, 0.0});
    const auto torsion = m_model.Connect<KARMPTorsionSpring>(
        "Bar spring", m_model.Frame("T", m_model.Ground(), axis), m_model.Frame("T", m_body, axis));
    KARMathLine line;
    torsion->GetFirstAttachment(line);
    EXPECT_EQ(line.GetOrigin(), at);
    torsion->GetSecondAttachment(line);
    EXPECT_EQ(line.GetOrigin(), KARMathPoint(0.0, 2.0, 0.0));
    EXPECT_EQ(KARMathVector(line.GetDirection()), KARMathVector(1.0, 0.0, 0.0));
}

TEST_F(PartsTest, ConnectorNeedsTwoBodies)
{
    const auto frame = m_model.Find<KARMPAxisSystem>("Bar.J");
    EXPECT_FALSE(m_model.Connect<KARMPBushing>("B", frame, frame));
    EXPECT_FALSE(m_model.Connect<KARMPBushing>("B", frame, Ref<KARMPGeometry>()));
    EXPECT_FALSE(m_model.Find<KARMPConnector>("B"));
    ASSERT_EQ(m_model.Problems().size(), 2U);
    EXPECT_EQ(m_model.Problems()[0].text, "a connector needs geometries of two bodies");
    EXPECT_EQ(m_model.Problems()[1].text, "there is no geometry of the second body");
}

TEST_F(PartsTest, MotorControlsItsVariableByConstantsOfItsOwn)
{
    const auto motor = m_model.Motor("Motor", m_angle, {.velocity = 2.0, .maximum = 5.0});
    ASSERT_TRUE(motor);
    EXPECT_EQ(m_angle->GetType(), KARMPVariableType::Controlled);
    EXPECT_EQ(motor->GetTargetType(), KARMPMotorTargetType::VelocityTarget);
    double number = 0.0;
    m_model.Find<KARMPConstant>("Motor.velocity")->GetValue(number);
    EXPECT_EQ(number, 2.0);
    const auto maximum = m_model.Find<KARMPConstant>("Motor.maximum");
    maximum->GetValue(number);
    EXPECT_EQ(number, 5.0);
    Quantity::Enum quantity{};
    maximum->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, Quantity::Torque);
    EXPECT_FALSE(m_model.Find<KARMPConstant>("Motor.position"));
    EXPECT_EQ(Lines(m_model.Check()), "");
}

TEST_F(PartsTest, MotorOfALengthReachesItsTargetByAForce)
{
    const auto slide = m_model.Body("Slide");
    const auto way = m_model.Variable(
        "way", m_model.Joint<KARMPPrismatic>("G", m_model.Ground(), slide, KARMathPoint()));
    const auto quantityOf = [this](const char* constant) {
        Quantity::Enum quantity{};
        m_model.Find<KARMPConstant>(constant)->GetPhysicalQuantity(quantity);
        return quantity;
    };
    const auto reaching = m_model.Motor("M", way, {.position = 2.0, .maximum = 5.0});
    EXPECT_EQ(reaching->GetTargetType(), KARMPMotorTargetType::PositionTarget);
    EXPECT_EQ(quantityOf("M.position"), Quantity::Length);
    EXPECT_EQ(quantityOf("M.maximum"), Quantity::Force);
    const auto pushing = m_model.Motor("N", way, {.acceleration = 2.0});
    EXPECT_EQ(pushing->GetTargetType(), KARMPMotorTargetType::AccelerationTarget);
    EXPECT_EQ(quantityOf("N.acceleration"), Quantity::Length);
}

TEST_F(PartsTest, MotorThatFailsLeavesItsVariableFree)
{
    m_model.Constant("Motor.velocity", Quantity::Angle, 1.0);
    EXPECT_FALSE(m_model.Motor("Motor", m_angle, {.velocity = 2.0}));
    EXPECT_EQ(m_angle->GetType(), KARMPVariableType::Free);
    EXPECT_FALSE(m_model.Find<KARMPMotor>("Motor"));
}

TEST_F(PartsTest, ExpressionFollowsItsVariables)
{
    const auto law = m_model.Expression("Law", Quantity::Angle, "0.5 * t", {m_model.Time()});
    ASSERT_TRUE(law);
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(law->GetValue(equation), KARSuccess);
    EXPECT_EQ(law->GetLinkedVariableCount(), 1);
    Quantity::Enum quantity{};
    law->GetPhysicalQuantity(quantity);
    EXPECT_EQ(quantity, Quantity::Angle);
    EXPECT_EQ(Lines(m_model.Check()), "");
}

TEST_F(PartsTest, ExpressionOfNoEquationIsNotMade)
{
    EXPECT_FALSE(m_model.Expression("Law", Quantity::Angle, "2 +", {}));
    TakeReports();
    ASSERT_EQ(m_model.Problems().size(), 1U);
    EXPECT_EQ(m_model.Problems()[0].text, "\"2 +\" is no equation");
    EXPECT_FALSE(m_model.Expression("Law", Quantity::Angle, "2", {Ref<KARMPVariable>()}));
    EXPECT_EQ(m_model.Problems()[1].text, "there is no variable of the equation");
    EXPECT_FALSE(m_model.Find<KARMPValue>("Law"));
}

TEST_F(PartsTest, ConnectorBetweenPointsOfTheWorldMakesThemOnBothBodies)
{
    Model model("M");
    const auto a = model.Body("A", {.at = KARMathPoint(1.0, 0.0, 0.0)});
    const auto b = model.Body("B");
    const auto spring = model.Connect<KARMPLinearSpring>("S", a, {2.0, 0.0, 0.0}, b,
                                                         {0.0, 3.0, 0.0}, {{"Stiffness", 100.0}});
    ASSERT_TRUE(spring);
    KARMathPoint own;
    model.Find<KARMPPoint>("A.S")->GetPoint(own);
    EXPECT_EQ(own, KARMathPoint(1.0, 0.0, 0.0));
    EXPECT_EQ(PlaceOf(model.Find<KARMPGeometry>("A.S")), KARMathPoint(2.0, 0.0, 0.0));
    EXPECT_EQ(PlaceOf(model.Find<KARMPGeometry>("B.S")), KARMathPoint(0.0, 3.0, 0.0));
    EXPECT_TRUE(model.Find<KARMPConstant>("S.stiffness"));
    const auto bushing =
        model.Connect<KARMPBushing>("F", a, b, *FrameAlong({0.0, 0.0, 4.0}, {1.0, 0.0, 0.0}));
    ASSERT_TRUE(bushing);
    EXPECT_EQ(PlaceOf(model.Find<KARMPGeometry>("A.F")), KARMathPoint(0.0, 0.0, 4.0));
    EXPECT_EQ(PlaceOf(model.Find<KARMPGeometry>("B.F")), KARMathPoint(0.0, 0.0, 4.0));
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Connect<KARMPBushing>("G", a, {}, KARMathAxis()));
    EXPECT_FALSE(model.Connect<KARMPBushing>("G", a, a, KARMathAxis()));
    EXPECT_EQ(model.Problems().size(), 2U);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(PartsTest, PlaceOfAPlanarPointIsThatInItsPlane)
{
    Model model("M");
    const auto body = model.PlanarBody("A", {.at = KARMathPoint2D(1.0, 2.0)});
    EXPECT_EQ(PlaceOf(model.Point("P", body, {3.0, 4.0})), KARMathPoint2D(3.0, 4.0));
}

TEST_F(PartsTest, ExpressionIsEvaluatedWhereItsVariablesAreGiven)
{
    Model model("M");
    const auto law =
        model.Expression("L", KARMPPhysicalQuantity::Angle, "2 * t + 1", {model.Time()});
    EXPECT_EQ(*model.Evaluate(law, {{"t", 3.0}}), 7.0);
    EXPECT_EQ(*model.Evaluate(law, {}), 7.0);
    EXPECT_EQ(model.Evaluate(law, {{"t", 4.0}, {"s", 3.0}}).Error().text,
              "no equation has a variable \"s\"");
    EXPECT_EQ(*model.Evaluate(law, {}), 7.0);
    EXPECT_EQ(model.Evaluate(model.Add<KARMPExpression>("M"), {}).Error().text,
              "KARMPExpression \"M\" has no equation");
    const int line = __LINE__ + 1;
    const auto none = model.Evaluate({}, {});
    EXPECT_EQ(none.Error().text, "there is no expression");
    EXPECT_EQ(none.Error().where.line, line);
    EXPECT_TRUE(model.Problems().empty());
}

} // namespace
