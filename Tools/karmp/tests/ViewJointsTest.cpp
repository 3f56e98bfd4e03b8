// Where joints, connectors and couplings stand in a picture, and with which symbols.
#include "ViewFixture.h"

#include <cmath>
#include <string>

namespace karmp::tool {

namespace {

using karmp::model::Ref;

class ViewJoints : public ViewOfModel
{
protected:
    /// A constraint of a joint, with a geometry.
    template <class Joint>
    void Use(const Ref<Joint>& joint, const QOBSharedHandle<KARMPGeometry>& geometry)
    {
        const auto constraint =
            m_model.Add<KARMPCoincidence>("use" + std::to_string(m_constraintCount++));
        constraint->LinkToGeometry(geometry);
        joint->AddConstraint(constraint);
    }

    template <class Joint>
    std::string SymbolOf()
    {
        const auto joint = m_model.Add<Joint>(Joint::ClassInfo().getName());
        joint->LinkToBody(m_model.Ground(), KARMPBodyOrientation::Out);
        Use(joint, m_onGround);
        return std::string(Scene().joints.back().symbol);
    }

    Ref<KARMPPoint> m_onGround = m_model.Point("g", m_model.Ground(), {0, 0, 5});
    int m_constraintCount = 0;
};

TEST_F(ViewJoints, HaveTheSymbolsOfTheirKinds)
{
    EXPECT_EQ(SymbolOf<KARMPRevolute>(), "revolute");
    EXPECT_EQ(SymbolOf<KARMPPrismatic>(), "prismatic");
    EXPECT_EQ(SymbolOf<KARMPCylindrical>(), "cylindrical");
    EXPECT_EQ(SymbolOf<KARMPSpherical>(), "spherical");
    EXPECT_EQ(SymbolOf<KARMPUniversal>(), "universal");
    EXPECT_EQ(SymbolOf<KARMPPlanar>(), "planar");
    EXPECT_EQ(SymbolOf<KARMPScrew>(), "screw");
    EXPECT_EQ(SymbolOf<KARMPRigid>(), "rigid");
    EXPECT_EQ(SymbolOf<KARMPUserDefined>(), "joint");
}

TEST_F(ViewJoints, OfAPointOnALineInThePlaneHaveTheSymbolOfNoKind)
{
    const auto body = m_model.PlanarBody("flat");
    const auto point = m_model.Attach<KARMPPoint2D>("p", m_model.PlanarGround());
    const auto line = m_model.Attach<KARMPLine2D>("l", body);
    line->SetLine({{0, 0}, {0, 1}});
    const auto joint = m_model.Add<KARMPUserDefined2D>("slot");
    joint->LinkToBody(m_model.PlanarGround(), KARMPBodyOrientation::Out);
    joint->LinkToBody(body, KARMPBodyOrientation::In);
    Use(joint, point);
    Use(joint, line);
    const ViewScene scene = Scene();
    ASSERT_EQ(scene.joints.size(), 1U);
    EXPECT_EQ(scene.joints[0].frames.size(), 2U);
    EXPECT_EQ(scene.joints[0].symbol, "joint");
}

TEST_F(ViewJoints, StandOnTheFirstOfSeveralGeometriesThatCanBeDrawn)
{
    const auto joint = m_model.Add<KARMPCylindrical>("j");
    joint->LinkToBody(m_model.Ground(), KARMPBodyOrientation::Out);
    Use(joint, m_model.Attach<KARMPSphere>("no radius", m_model.Ground()));
    Use(joint, m_onGround);
    Use(joint, m_model.Attach<KARMPSphere>("no radius either", m_model.Ground()));
    Use(joint, m_model.Point("h", m_model.Ground(), {0, 0, 6}));
    ExpectNear(Scene().joints.at(0).frames.at(0).axis.GetOrigin(), {0, 0, 5});
}

TEST_F(ViewJoints, WithoutGeometryStandBetweenTheBodiesThatAreDrawn)
{
    const auto joint = m_model.Add<KARMPRigid>("weld");
    const auto lost = m_model.Body("lost");
    lost->SetPosition(KARMathTransformation(KARMathVector(std::nan(""), 0, 0)), 0);
    joint->LinkToBody(lost, KARMPBodyOrientation::Out);
    EXPECT_EQ(NoteOf("weld"), "Not drawn: nothing tells where it is.");
    joint->LinkToBody(m_model.Body("a", {.at = KARMathPoint(2, 4, 6)}), KARMPBodyOrientation::In);
    EXPECT_EQ(NoteOf("weld"), "");
    ExpectNear(Scene().joints.at(0).frames.at(0).axis.GetOrigin(), {2, 4, 6});
}

TEST_F(ViewJoints, OfAFixedBodyAreNotOnTheGround)
{
    const auto body = m_model.Body("base");
    body->Fix();
    m_model.Joint<KARMPRevolute>("hinge", m_model.Ground(), body, KARMathPoint());
    const ViewScene scene = Scene();
    EXPECT_TRUE(Drawn(scene, scene.bodies, "base")->isFixed);
    EXPECT_FALSE(Drawn(scene, scene.bodies, "base")->isGround);
    EXPECT_TRUE(scene.joints.at(0).frames.at(0).isGround);
    EXPECT_FALSE(scene.joints.at(0).frames.at(1).isGround);
}

TEST_F(ViewJoints, AConnectorStandsOnItsGeometriesBeforeItsBodiesAndAttachments)
{
    const auto spring = m_model.Add<KARMPLinearSpring>("s");
    spring->LinkToGeometry(m_onGround);
    spring->LinkToGeometry(
        m_model.Point("p", m_model.Body("a", {.at = KARMathPoint(2, 0, 0)}), {3, 0, 0}));
    for (const bool hasBodies : {false, true}) {
        if (hasBodies) {
            const auto other = m_model.Body("b", {.at = KARMathPoint(9, 0, 0)});
            spring->SetFirstBody(other);
            spring->SetSecondBody(other);
            spring->SetFirstAttachment({0, 1, 0});
            spring->SetSecondAttachment({0, 1, 0});
        }
        const ViewScene scene = Scene();
        ASSERT_EQ(scene.connectors.size(), 1U);
        ExpectNear(scene.connectors[0].from.axis.GetOrigin(), {0, 0, 5});
        ExpectNear(scene.connectors[0].to.axis.GetOrigin(), {3, 0, 0});
        EXPECT_TRUE(scene.connectors[0].from.isGround);
        EXPECT_FALSE(scene.connectors[0].to.isGround);
    }
}

TEST_F(ViewJoints, AConnectorOfOneBodyEndsWhereItBegins)
{
    const auto spring = m_model.Add<KARMPLinearSpring>("s");
    EXPECT_EQ(NoteOf("s"), "Not drawn: nothing tells where it is.");
    const auto body = m_model.Body("a", {.at = KARMathPoint(2, 0, 0)});
    spring->SetSecondBody(body);
    spring->SetSecondAttachment({0, 1, 0});
    EXPECT_EQ(NoteOf("s"), "");
    for (const ViewFrame& frame : {Scene().connectors.at(0).from, Scene().connectors.at(0).to})
        ExpectNear(frame.axis.GetOrigin(), {2, 1, 0});
    const auto other = m_model.Add<KARMPLinearSpring>("t");
    other->SetFirstBody(body);
    other->SetFirstAttachment({0, std::nan(""), 0});
    for (const ViewFrame& frame : {Scene().connectors.at(1).from, Scene().connectors.at(1).to})
        ExpectNear(frame.axis.GetOrigin(), {2, 0, 0});
}

TEST_F(ViewJoints, ACouplingNeedsTwoJointsThatAreDrawn)
{
    const auto arm = m_model.Body("arm");
    const auto first = m_model.Joint<KARMPRevolute>(
        "first", m_model.Ground(), arm, KARMathAxis({1, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}),
        KARMathAxis({2, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
    const auto second = m_model.Joint<KARMPRevolute>("second", m_model.Ground(), m_model.Body("b"),
                                                     KARMathPoint(0, 3, 0));
    const auto nowhere = m_model.Add<KARMPRigid>("nowhere");
    const auto gear = m_model.Couple<KARMPGear>(
        "gear", {{m_model.Variable("x", first)}, {m_model.Variable("y", second)}});
    ASSERT_TRUE(gear);
    const ViewScene scene = Scene();
    ASSERT_EQ(scene.couplings.size(), 1U);
    ASSERT_EQ(scene.couplings[0].points.size(), 2U);
    ExpectNear(scene.couplings[0].points[0], {1, 0, 0});
    ExpectNear(scene.couplings[0].points[1], {0, 3, 0});

    // The second variable becomes one of a joint that stands nowhere, and of a constraint alone.
    const auto other = m_model.Add<KARMPGear>("other");
    const auto equation = m_model.Add<KARMPCoincidence>("equation");
    other->AddConstraint(equation);
    equation->LinkToVariable(m_model.Find<KARMPVariable>("x"));
    const auto lone = m_model.Add<KARMPVariable>("lone");
    equation->LinkToVariable(lone);
    for (const auto& joint : {Ref<KARMPJoint>(), Ref<KARMPJoint>(nowhere)}) {
        const auto constraint = m_model.Add<KARMPCoincidence>(joint ? "of nowhere" : "of none");
        if (joint)
            constraint->SetJoint(joint);
        lone->LinkToConstraint(constraint);
    }
    EXPECT_EQ(Scene().couplings.size(), 1U);
    EXPECT_EQ(NoteOf("other"), "Not drawn: nothing tells where it is.");
}

} // namespace

} // namespace karmp::tool
