// What holds the joints of a body in a picture, and how large symbols are.
#include "KAR3DMeshRep.h"
#include "ViewFixture.h"

#include <cmath>
#include <string>

namespace karmp::tool {

namespace {

using karmp::model::Ref;

class ViewBodies : public ViewOfModel
{
protected:
    ViewBody Body() const
    {
        const ViewScene scene = Scene();
        return *Drawn(scene, scene.bodies, "a");
    }
    std::size_t AnchorCount() const { return Body().anchors.size(); }

    Ref<KARMPBody> m_body = m_model.Body("a");
};

TEST_F(ViewBodies, AreHeldByWhatHasAMiddleOrElseByWhatHasAnAxis)
{
    const auto ellipse = m_model.Attach<KARMPCircle>("circle", m_body);
    ellipse->SetCircle({{1, 0, 0}, {1, 0, 0}, {0, 1, 0}, 1});
    const auto cylinder = m_model.Attach<KARMPCylinder>("cylinder", m_body);
    cylinder->SetOrigin({2, 0, 0});
    cylinder->SetAxis({0, 0, 1});
    cylinder->SetRadius(1);
    const auto cone = m_model.Attach<KARMPCone>("cone", m_body);
    cone->SetOrigin({3, 0, 0});
    cone->SetAxis({0, 0, 1});
    cone->SetAngle(0.5);
    const auto torus = m_model.Attach<KARMPTorus>("torus", m_body);
    torus->SetCenter({4, 0, 0});
    torus->SetNormal({0, 0, 1});
    torus->SetMajorRadius(1);
    torus->SetMinorRadius(0.5);
    const auto line = m_model.Attach<KARMPLine>("line", m_body);
    line->SetLine({{5, 0, 0}, {0, 0, 1}});
    const auto plane = m_model.Attach<KARMPPlane>("plane", m_body);
    plane->SetPlane({{6, 0, 0}, {0, 0, 1}});
    EXPECT_EQ(AnchorCount(), 5U) << "all but the plane";
    const auto sphere = m_model.Attach<KARMPSphere>("sphere", m_body);
    sphere->SetCenter({7, 0, 0});
    sphere->SetRadius(1);
    EXPECT_EQ(AnchorCount(), 1U);
    m_model.Point("point", m_body, {8, 0, 0});
    m_model.Frame("frame", m_body, {{9, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    EXPECT_EQ(AnchorCount(), 3U);
    const ViewScene scene = Scene();
    std::string names;
    for (const ViewDrawing& drawing : Drawn(scene, scene.bodies, "a")->drawings)
        names += ' ' + scene.entities.at(static_cast<std::size_t>(drawing.entity)).name;
    EXPECT_EQ(names, " a.circle a.cylinder a.cone a.torus a.line a.plane a.sphere a.point a.frame");
}

TEST_F(ViewBodies, WithoutGeometryAreHeldByTheirCentre)
{
    m_body->SetMass(1.0);
    m_body->SetCenterOfGravity({3, 0, 0});
    ExpectNear(Body().anchors.at(0), {3, 0, 0});
    EXPECT_TRUE(Body().rods.empty());
    m_body->SetCenterOfGravity({std::nan(""), 0, 0});
    EXPECT_FALSE(Body().center);
}

TEST_F(ViewBodies, OfACentreAtTheirOnlyAnchorHaveNoRod)
{
    m_body->SetMass(1.0);
    m_body->SetCenterOfGravity({3, 0, 0});
    m_model.Point("p", m_body, {3, 0, 0});
    EXPECT_EQ(AnchorCount(), 1U);
}

TEST_F(ViewBodies, HaveAnAnchorOnceUpToAMillionthOfThePicture)
{
    m_model.Point("p", m_body, {1, 0, 0});
    m_model.Point("q", m_body, {1, 0, 1e-8});
    m_model.Point("r", m_body, {1, 0, 1e-4});
    EXPECT_EQ(AnchorCount(), 2U);
}

TEST_F(ViewBodies, GroundHasNoAnchorsButAxisSystemsAndPoints)
{
    const auto line = m_model.Attach<KARMPLine2D>("line", m_model.PlanarGround());
    line->SetLine({{5, 0}, {0, 1}});
    const ViewScene scene = Scene();
    const auto* const ground = Drawn(scene, scene.bodies, "Frame");
    EXPECT_TRUE(ground->isGround);
    EXPECT_EQ(ground->drawings.size(), 1U);
    EXPECT_TRUE(ground->anchors.empty());
}

TEST_F(ViewBodies, TellWhyTheyAndTheirGeometryAreNotDrawn)
{
    m_model.Attach<KARMPSphere>("sphere", m_body);
    const auto lost = m_model.Body("lost");
    const auto shape = m_model.Add<KARMP3DRep>("shape");
    shape->LinkToBody(lost);
    lost->LinkToShape(shape);
    EXPECT_EQ(NoteOf("a.sphere"),
              "Not drawn: it is degenerate or not finite, or has no known form.");
    EXPECT_EQ(NoteOf("shape"), "Not drawn: it has nothing that can be.");
    EXPECT_EQ(NoteOf("lost"), "");
    shape->Set3DRep(KAR3DMeshRep::CreateRep({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}));
    lost->SetPosition(KARMathTransformation(KARMathVector(std::nan(""), 0, 0)), 0);
    EXPECT_EQ(NoteOf("lost"), "Not drawn: its position is not finite, or too far away.");
    EXPECT_EQ(NoteOf("shape"), "");
}

TEST_F(ViewBodies, NameTheirShapesByNumber)
{
    for (const std::string name : {"s", "t"}) {
        const auto shape = m_model.Add<KARMP3DRep>(name);
        shape->Set3DRep(
            KAR3DMeshRep::CreateRep({{0, 0, 0}, {-30, 0, 0}, {0, -40, 0}}, {{0, 1, 2}}));
        shape->LinkToBody(m_body);
        m_body->LinkToShape(shape);
    }
    const ViewScene scene = Scene();
    EXPECT_EQ(Drawn(scene, scene.bodies, "a")->shapes, (std::vector<int>{0, 1}));
    EXPECT_NEAR(scene.symbolSize, 0.035 * 50.0, 1e-12);
}

TEST_F(ViewBodies, SymbolsSuitTheMiddleRodAndAreNotTooLargeForThePicture)
{
    const auto addRod = [this](const std::string& name, double length) {
        const auto body = m_model.Body(name);
        m_model.Point("p", body, {0, 0, 0});
        m_model.Point("q", body, {length, 0, 0});
    };
    addRod("b", 1);
    EXPECT_NEAR(Scene().symbolSize, 0.035, 1e-12);
    addRod("c", 2);
    addRod("d", 100);
    EXPECT_NEAR(Scene().symbolSize, 0.3 * 2, 1e-12);
}

TEST_F(ViewBodies, SymbolsOfAPictureWithoutExtentAreATenthOfAMetre)
{
    EXPECT_EQ(Scene().symbolSize, 0.1);
}

} // namespace

} // namespace karmp::tool
