// Numbers, springs, gaps, loops and contacts that are read from a model.
#include "EditTesting.h"
#include "KARMPModelContacts.h"

#include <cmath>

using namespace karmp::model;

namespace {

class ReadingTest : public KARMPTestFixture
{
protected:
    Model m_model{"M"};
    Ref<KARMPBody> m_body = m_model.Body("A", {.mass = 2.0, .at = KARMathPoint(0.0, 0.0, 3.0)});

    Ref<KARMPSphere> Sphere(const char* name, const KARMathPoint& center, double radius)
    {
        return m_model.Attach<KARMPSphere>(name, m_body, {{"Center", center}, {"radius", radius}});
    }
};

TEST_F(ReadingTest, NumberOfAnItemIsFoundBehindReferencesAndInRows)
{
    EXPECT_EQ(*NumberOf(m_body, "Mass"), 2.0);
    EXPECT_EQ(*NumberOf(m_body, "Position", 2), 3.0);
    const auto spring = m_model.Spring("S", m_model.Ground(), {}, m_body, {0.0, 0.0, 3.0},
                                       {.stiffness = 10.0, .damping = 0.5, .restLength = 2.0});
    EXPECT_EQ(*NumberOf(spring, "Stiffness"), 10.0);
    EXPECT_EQ(*NumberOf(spring, "DampingCoefficient"), 0.5);
    const auto sensor = m_model.Add<KARMPJointDOFSensor>("D", {{"DOFindex", 4}});
    EXPECT_EQ(*NumberOf(sensor, "DOFindex"), 4.0);
    const int line = __LINE__ + 1;
    const auto none = NumberOf(m_body, "Weigth");
    EXPECT_EQ(none.Error().text, "KARMPBody \"A\" has no number \"Weigth\"");
    EXPECT_EQ(none.Error().where.line, line);
    EXPECT_EQ(NumberOf(m_body, "Position", 12).Error().text,
              "KARMPBody \"A\" has no number of index 12 in \"Position\", which has 12");
    EXPECT_FALSE(NumberOf(sensor, "Joint"));
}

TEST_F(ReadingTest, SpringCarriesItsLoadWhereItStands)
{
    const auto tyre = m_model.Spring("T", m_model.Ground(), {}, m_body, {0.0, 0.0, 3.0},
                                     {.stiffness = 100.0, .load = 50.0});
    EXPECT_DOUBLE_EQ(ForceOf(tyre), 50.0);
    EXPECT_DOUBLE_EQ(*NumberOf(tyre, "RestLength"), 3.5);
    const auto spring = m_model.Spring("S", m_model.Ground(), {}, m_body, {0.0, 0.0, 3.0},
                                       {.stiffness = 10.0, .restLength = 2.0});
    EXPECT_DOUBLE_EQ(ForceOf(spring), -10.0);
    EXPECT_EQ(Lines(m_model.Check()), "");
    const std::string before = TextOf(m_model);
    for (const double stiffness : {0.0, -1.0, std::nan("")})
        EXPECT_FALSE(m_model.Spring("N", m_model.Ground(), {}, m_body, {1.0, 0.0, 0.0},
                                    {.stiffness = stiffness}));
    EXPECT_FALSE(m_model.Spring("N", m_model.Ground(), {}, m_body, {1.0, 0.0, 0.0},
                                {.stiffness = 1.0, .load = -2.0}));
    ASSERT_EQ(m_model.Problems().size(), 4U);
    EXPECT_EQ(m_model.Problems()[0].text,
              "the stiffness and the length at rest of \"N\" are finite numbers above 0");
    m_model.ClearProblems();
    EXPECT_TRUE(TextOf(m_model) == before);
    EXPECT_TRUE(std::isnan(ForceOf(m_model.Add<KARMPLinearSpring>("Loose"))));
}

TEST_F(ReadingTest, GapIsTheWayBetweenTheNearestPoints)
{
    const auto ball = Sphere("Ball", {1.0, 0.0, 0.0}, 0.5);
    const auto plane = m_model.Attach<KARMPPlane>(
        "Floor", m_model.Ground(), {{"Origin", {0.0, 0.0, 1.0}}, {"Normal", {0.0, 0.0, 1.0}}});
    const auto gap = GapBetween(ball, plane);
    ASSERT_TRUE(gap);
    EXPECT_DOUBLE_EQ(gap->distance, 1.5);
    EXPECT_EQ(gap->normal, KARMathVector(0.0, 0.0, 1.0));
    EXPECT_EQ(gap->onFirst, KARMathPoint(1.0, 0.0, 2.5));
    EXPECT_EQ(gap->onSecond, KARMathPoint(1.0, 0.0, 1.0));
    const auto back = GapBetween(plane, ball);
    EXPECT_DOUBLE_EQ(back->distance, 1.5);
    EXPECT_EQ(back->normal, KARMathVector(0.0, 0.0, -1.0));
    EXPECT_EQ(back->onFirst, gap->onSecond);
    const auto point = m_model.Point("P", m_body, {1.0, 0.0, 5.0});
    EXPECT_DOUBLE_EQ(GapBetween(point, ball)->distance, 1.5);
    EXPECT_EQ(GapBetween(point, ball)->onSecond, KARMathPoint(1.0, 0.0, 3.5));
    const auto below = m_model.Frame("F", m_body, *FrameAlong({0.0, 0.0, 0.25}));
    EXPECT_DOUBLE_EQ(GapBetween(below, plane)->distance, -0.75);
    EXPECT_FALSE(GapBetween(plane, plane));
    EXPECT_FALSE(GapBetween(point, point));
    EXPECT_FALSE(GapBetween(ball, m_model.Attach<KARMPLine>("L", m_body)));
}

TEST_F(ReadingTest, GapOfTwoBallsIsBetweenTheirSurfaces)
{
    const auto first = Sphere("First", {0.0, 0.0, 0.0}, 0.5);
    const auto second = Sphere("Second", {0.0, 4.0, 0.0}, 2.0);
    const auto gap = GapBetween(first, second);
    ASSERT_TRUE(gap);
    EXPECT_DOUBLE_EQ(gap->distance, 1.5);
    EXPECT_EQ(gap->normal, KARMathVector(0.0, -1.0, 0.0));
    EXPECT_EQ(gap->onFirst, KARMathPoint(0.0, 0.5, 3.0));
    EXPECT_EQ(gap->onSecond, KARMathPoint(0.0, 2.0, 3.0));
}

TEST_F(ReadingTest, FacesTurnAndMoveWithTheirBodies)
{
    const KARMathTransformation turned =
        KARMathTransformation(KARMathVector(5.0, 0.0, 0.0)) *
        KARMathTransformation::Rotation({{}, {0.0, 0.0, 1.0}}, std::acos(0.0));
    const auto wall =
        m_model.Attach<KARMPPlane>("Face", m_model.Body("Wall", {.position = turned}),
                                   {{"Origin", {0.0, 1.0, 0.0}}, {"Normal", {0.0, 1.0, 0.0}}});
    const auto gap = GapBetween(Sphere("Ball", {1.0, 0.0, 0.0}, 0.5), wall);
    ASSERT_TRUE(gap);
    EXPECT_DOUBLE_EQ(gap->distance, 2.5);
    EXPECT_NEAR((gap->normal - KARMathVector(-1.0, 0.0, 0.0)).Norm(), 0.0, 1e-15);
    QOBSharedHandle<KARMPBody> body;
    wall->GetBody(body);
    const auto hook = m_model.Point("Hook", Ref(body), {4.0, 3.0, 2.0});
    const KARMathAxis frame = FrameOf(hook);
    EXPECT_NEAR((frame.GetOrigin() - KARMathPoint(4.0, 3.0, 2.0)).Norm(), 0.0, 1e-15);
    EXPECT_NEAR((frame.GetFirstDirection() - KARMathVector(0.0, 1.0, 0.0)).Norm(), 0.0, 1e-15);
    // A geometry of no body stands in the axes of the world.
    const auto free = m_model.Add<KARMPPoint>("Free", {{"Origin", {1.0, 7.0, 0.0}}});
    EXPECT_DOUBLE_EQ(GapBetween(free, wall)->distance, 3.0);
    const auto guide = m_model.PlanarBody(
        "Guide", {.position = KARMathTransformation2D({{0.0, 1.0}, {-1.0, 0.0}}, {5.0, 0.0})});
    const auto line = m_model.Attach<KARMPLine2D>(
        "Line", guide, {{"Origin", {0.0, 1.0}}, {"Direction", {1.0, 0.0}}});
    const auto point = m_model.Add<KARMPPoint2D>("Flat", {{"Origin", {1.0, 7.0}}});
    const auto flat = GapBetween(point, line);
    ASSERT_TRUE(flat);
    EXPECT_DOUBLE_EQ(flat->distance, 3.0);
    EXPECT_EQ(flat->onSecond, KARMathPoint(4.0, 7.0, 0.0));
}

TEST_F(ReadingTest, LineOfASketchIsMetFromEitherSide)
{
    const auto cam = m_model.PlanarBody("Cam", {.at = KARMathPoint2D(2.0, 0.0)});
    const auto disc =
        m_model.Attach<KARMPCircle2D>("Disc", cam, {{"Center", {1.0, 0.0}}, {"radius", 0.5}});
    const auto ground = m_model.PlanarGround();
    for (const double height : {2.0, -2.0}) {
        const auto line =
            m_model.Attach<KARMPLine2D>(height > 0.0 ? "Over" : "Under", ground,
                                        {{"Origin", {0.0, height}}, {"Direction", {1.0, 0.0}}});
        const auto gap = GapBetween(disc, line);
        ASSERT_TRUE(gap);
        EXPECT_DOUBLE_EQ(gap->distance, 1.5);
        EXPECT_EQ(gap->onSecond, KARMathPoint(3.0, height, 0.0));
        EXPECT_FALSE(GapBetween(Sphere(height > 0.0 ? "S" : "T", {}, 1.0), line));
    }
    EXPECT_DOUBLE_EQ(GapBetween(m_model.Point("P", cam, {3.0, 2.0}), disc)->distance, 1.5);
}

TEST_F(ReadingTest, LoopGapIsThatOfTheWorstJointThatOnlyTurns)
{
    EXPECT_EQ(LoopGap(m_model), 0.0);
    const auto b = m_model.Body("B");
    m_model.Joint<KARMPRevolute>("J", m_body, b, KARMathPoint());
    m_model.Joint<KARMPSpherical>("S", m_body, b, {1.0, 0.0, 0.0});
    m_model.Joint<KARMPPrismatic>("P", m_body, b, *FrameAlong({}), *FrameAlong({0.0, 0.0, 9.0}));
    EXPECT_NEAR(LoopGap(m_model), 0.0, 1e-15);
    b->SetPosition(KARMathTransformation(KARMathVector(0.0, 0.5, 0.0)), 0);
    EXPECT_DOUBLE_EQ(LoopGap(m_model), 0.5);
    const auto flat = m_model.PlanarBody("Flat");
    m_model.Joint<KARMPUserDefined2D>("Pin", m_model.PlanarGround(), flat, KARMathPoint2D());
    flat->SetPosition(KARMathTransformation2D({{1.0, 0.0}, {0.0, 1.0}}, {2.0, 0.0}));
    EXPECT_DOUBLE_EQ(LoopGap(m_model), 2.0);
}

TEST_F(ReadingTest, LoopGapLeavesOutWhatNeitherTurnsNorMeetsInPoints)
{
    const auto b = m_model.Body("B");
    m_model.Joint<KARMPRigid>("R", m_body, b, KARMathPoint());
    const auto joint = m_model.Joint<KARMPRevolute>("J", m_model.Ground(), m_body, KARMathPoint());
    m_model.Joint<KARMPRevolute>("K", m_model.Ground(), b, KARMathPoint());
    const auto cam = m_model.PlanarBody("Cam");
    const auto disc = m_model.Attach<KARMPCircle2D>("Disc", cam, {{"radius", 0.5}});
    const auto tray = m_model.PlanarBody("Tray");
    const auto face = m_model.Attach<KARMPLine2D>(
        "Face", tray, {{"Origin", {0.0, 9.0}}, {"Direction", {1.0, 0.0}}});
    const auto roll =
        m_model.Attach<KARMPCircle2D>("Roll", tray, {{"Center", {0.0, 9.0}}, {"radius", 0.5}});
    ASSERT_TRUE((m_model.Joint<KARMPUserDefined2D, KARMPTangency>("Contact", disc, face)));
    ASSERT_TRUE((m_model.Joint<KARMPUserDefined2D, KARMPTangency>("Mesh", disc, roll)));
    m_body->SetPosition(KARMathTransformation(KARMathVector(0.0, 0.5, 3.0)), 0);
    b->SetPosition(KARMathTransformation(KARMathVector(0.25, 0.0, 0.0)), 0);
    EXPECT_DOUBLE_EQ(LoopGap(m_model), 0.5);
    ASSERT_TRUE(m_model.Delete(joint));
    EXPECT_DOUBLE_EQ(LoopGap(m_model), 0.25);
}

TEST_F(ReadingTest, ContactPushesBothBodiesApart)
{
    const auto floor = m_model.Body("Floor");
    const auto plane = m_model.Attach<KARMPPlane>("Face", floor, {{"Normal", {0.0, 0.0, 1.0}}});
    const RefList<KARMPSphere> balls{Sphere("L", {-1.0, 0.0, -2.5}, 0.75),
                                     Sphere("R", {1.0, 0.0, -2.5}, 0.75),
                                     Sphere("Over", {0.0, 0.0, 0.0}, 0.75)};
    std::vector<KARMPContactForceData> contacts;
    for (const auto& ball : balls)
        if (const auto contact = ContactBetween(ball, plane, 4.0))
            contacts.push_back(*contact);
    ASSERT_EQ(contacts.size(), 2U);
    EXPECT_EQ(contacts[0].firstBody, m_body.Handle());
    EXPECT_EQ(contacts[0].secondBody, floor.Handle());
    EXPECT_DOUBLE_EQ(contacts[0].penetrationDepth, 0.25);
    EXPECT_EQ(contacts[0].firstContactPoint, KARMathPoint(-1.0, 0.0, -0.25));
    EXPECT_EQ(contacts[0].secondContactPoint, KARMathPoint(-1.0, 0.0, 0.0));
    EXPECT_EQ(contacts[0].firstNormalVector, KARMathVector(0.0, 0.0, -1.0));
    EXPECT_EQ(contacts[0].firstContactForce, KARMathVector(0.0, 0.0, 4.0));
    EXPECT_EQ(contacts[0].secondNormalForce, KARMathVector(0.0, 0.0, -4.0));
    const auto sensor = m_model.Add<KARMPCollisionSensor>("C");
    for (int step = 0; step < 2; ++step) {
        EXPECT_EQ(RecordContacts(*sensor, contacts), KARSuccess);
        EXPECT_EQ(sensor->GetContactForceDataCount(), 2);
        EXPECT_EQ(sensor->GetContactCount(), 1);
    }
    EXPECT_EQ(RecordContacts(*sensor, {}), KARSuccess);
    EXPECT_EQ(sensor->GetContactCount(), 0);
}

TEST_F(ReadingTest, TrianglesOfAllBodiesAreCounted)
{
    EXPECT_EQ(TriangleCountOf(m_model), 0U);
    const std::array solids{Solid{{0.0, 0.0, 0.0}, {1.0, 2.0, 3.0}}};
    m_model.Shape("Shape", m_body, solids);
    m_model.Shape("Shape", m_model.Body("B"), solids);
    EXPECT_EQ(TriangleCountOf(m_model), 24U);
}

} // namespace
