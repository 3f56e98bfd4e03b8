// What a page shows of a world: entities, bodies, joints, connectors and couplings.
#include "KARMPModel.h"
#include "ViewFixture.h"
#include "ViewRods.h"

#include <cmath>
#include <set>
#include <string>

namespace karmp::tool {

namespace {

using karmp::model::Model;

constexpr KARMathAxis Upright{{1, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

TEST(ViewScene, HoldsEachEntityOfTheDocumentInTheOrderOfItsLists)
{
    const ViewScene scene = SceneOf("quarter-car");
    int count = 0;
    for (const ViewFamily& family : scene.families)
        count += family.count;
    EXPECT_EQ(count, static_cast<int>(scene.entities.size()));
    EXPECT_EQ(count, 76);
    EXPECT_EQ(scene.families.front().name, "Bodies");
    EXPECT_EQ(scene.families[1].name, "Joints");
    EXPECT_EQ(scene.entities[0].name, "Body");
    EXPECT_EQ(scene.entities[0].identifier, "Body");
    EXPECT_EQ(scene.kinds[static_cast<std::size_t>(scene.entities[0].kind)], "Body");
    EXPECT_EQ(scene.title, "quarter-car");
    EXPECT_EQ(scene.gravity, KARMathVector(0, 0, -9.81));
}

TEST(ViewScene, LinksEntitiesToWhatTheyReferTo)
{
    const ViewScene scene = SceneOf("slider-crank");
    const auto& crank = scene.entities[0];
    ASSERT_EQ(crank.name, "Crank");
    std::set<std::string> linked;
    for (const ViewLinks& links : crank.links)
        for (const int target : links.targets)
            linked.insert(scene.labels[static_cast<std::size_t>(links.label)] + ": " +
                          scene.entities[static_cast<std::size_t>(target)].name);
    EXPECT_EQ(linked.count("Joints: Crank pin"), 1U);
    EXPECT_EQ(linked.count("Joints: Main bearing"), 1U);
    EXPECT_EQ(linked.size(), 4U) << "two geometries and two joints";
}

TEST(ViewScene, DrawsABodyAsRodsBetweenItsAnchors)
{
    const ViewScene scene = SceneOf("seven-body");
    const auto* const body = Drawn(scene, scene.bodies, "K3");
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(body->anchors.size(), 3U) << "E, where three joints meet, B and D";
    EXPECT_EQ(body->rods.size(), 2U);
    EXPECT_TRUE(body->center);
    EXPECT_FALSE(body->isFixed || body->isGround);
    const auto* const ground = Drawn(scene, scene.bodies, "GlobalBody");
    ASSERT_NE(ground, nullptr);
    EXPECT_TRUE(ground->isGround);
    EXPECT_TRUE(ground->rods.empty());
}

TEST(ViewScene, HoldsABodyOfOneAnchorByItsCentre)
{
    Model model("w");
    const auto body = model.Body("pendulum");
    model.Point("end", body, {1, 0, 0});
    const auto only = [&] {
        const ViewScene scene = CollectScene(*model.World(), "w");
        return *Drawn(scene, scene.bodies, "pendulum");
    };
    EXPECT_TRUE(only().rods.empty()) << "no mass, no centre";
    body->SetMass(2.0);
    body->SetCenterOfGravity({3, 0, 0});
    ASSERT_EQ(only().rods.size(), 1U);
    ExpectNear(only().rods[0].second, {3, 0, 0});
    const auto bare = model.Body("bare");
    const ViewScene scene = CollectScene(*model.World(), "w");
    EXPECT_EQ(Drawn(scene, scene.bodies, "bare")->anchors.size(), 1U);
}

TEST(ViewScene, HoldsPointsByTheShortestRods)
{
    const auto rods = RodsBetween({{0, 0, 0}, {5, 0, 0}, {1, 0, 0}, {1, 2, 0}});
    double length = 0.0;
    for (const auto& [from, to] : rods)
        length += (to - from).Norm();
    EXPECT_EQ(rods.size(), 3U);
    EXPECT_DOUBLE_EQ(length, 7.0);
    EXPECT_EQ(WithoutDoubles({{0, 0, 0}, {0, 0, 1e-9}, {1, 0, 0}}, 1e-6).size(), 2U);
    EXPECT_TRUE(RodsBetween({}).empty());
    EXPECT_EQ(RodsBetween(std::vector<KARMathPoint>(5000)).size(), 4999U);
}

TEST(ViewScene, PutsJointsWhereTheirFramesAreInTheWorld)
{
    Model model("w");
    const auto arm =
        model.Body("arm", {.at = KARMathPoint(0, 3, 0), .towards = KARMathPoint(0, 4, 0)});
    model.Joint<KARMPRevolute>("hinge", model.Ground(), arm, Upright);
    const ViewScene scene = CollectScene(*model.World(), "w");
    const auto* const joint = Drawn(scene, scene.joints, "hinge");
    ASSERT_NE(joint, nullptr);
    EXPECT_EQ(joint->symbol, "revolute");
    ASSERT_EQ(joint->frames.size(), 2U);
    for (const ViewFrame& frame : joint->frames) {
        ExpectNear(frame.axis.GetOrigin(), {1, 0, 0});
        ExpectNear(KARMathPoint() + frame.axis.GetThirdDirection(), {0, 0, 1});
    }
    EXPECT_TRUE(joint->frames[0].isGround);
    EXPECT_FALSE(joint->frames[1].isGround);
}

TEST(ViewScene, PutsTheParentsFrameFirst)
{
    Model model("w");
    const auto arm = model.Body("arm");
    const auto joint = model.Add<KARMPUniversal>("u");
    const auto constraint = model.Add<KARMPCoincidence>("c");
    joint->AddConstraint(constraint);
    constraint->LinkToGeometry(model.Frame("a", arm, Upright));
    constraint->LinkToGeometry(model.Frame("g", model.Ground(), {}));
    joint->LinkToBody(arm, KARMPBodyOrientation::In);
    joint->LinkToBody(model.Ground(), KARMPBodyOrientation::Out);
    const ViewScene scene = CollectScene(*model.World(), "w");
    ASSERT_EQ(scene.joints.size(), 1U);
    ASSERT_EQ(scene.joints[0].frames.size(), 2U);
    EXPECT_TRUE(scene.joints[0].frames[0].isGround);
    ExpectNear(scene.joints[0].frames[1].axis.GetOrigin(), {1, 0, 0});
}

TEST(ViewScene, PrefersAnAxisSystemToALineAndALineToAPoint)
{
    Model model("w");
    const auto arm = model.Body("arm");
    const auto joint = model.Add<KARMPCylindrical>("j");
    joint->LinkToBody(arm, KARMPBodyOrientation::In);
    const auto use = [&](const QOBSharedHandle<KARMPGeometry>& geometry, const char* name) {
        const auto constraint = model.Add<KARMPCoincidence>(name);
        constraint->LinkToGeometry(geometry);
        joint->AddConstraint(constraint);
        const ViewScene scene = CollectScene(*model.World(), "w");
        return scene.joints.at(0).frames.at(0).axis;
    };
    EXPECT_EQ(use(model.Point("p", arm, {7, 0, 0}), "c1").GetOrigin(), KARMathPoint(7, 0, 0));
    const auto line = model.Attach<KARMPLine>("l", arm);
    line->SetLine({{8, 0, 0}, {0, 1, 0}});
    const KARMathAxis onLine = use(line, "c2");
    EXPECT_EQ(onLine.GetOrigin(), KARMathPoint(8, 0, 0));
    EXPECT_EQ(onLine.GetThirdDirection(), KARMathVector(0, 1, 0));
    EXPECT_EQ(use(model.Frame("a", arm, Upright), "c3"), Upright);
}

TEST(ViewScene, PutsAJointWithoutGeometryBetweenItsBodies)
{
    Model model("w");
    const auto joint = model.Add<KARMPRigid>("weld");
    const auto empty = model.Add<KARMPRigid>("empty");
    joint->LinkToBody(model.Body("a", {.at = KARMathPoint(2, 0, 0)}), KARMPBodyOrientation::Out);
    joint->LinkToBody(model.Body("b", {.at = KARMathPoint(4, 2, 0)}), KARMPBodyOrientation::In);
    const ViewScene scene = CollectScene(*model.World(), "w");
    ASSERT_EQ(scene.joints.size(), 1U);
    EXPECT_EQ(scene.joints[0].symbol, "joint");
    ExpectNear(scene.joints[0].frames.at(0).axis.GetOrigin(), {3, 1, 0});
    for (const ViewEntity& entity : scene.entities)
        EXPECT_EQ(entity.note.empty(), entity.name != "empty") << entity.name;
}

TEST(ViewScene, SpansConnectorsBetweenTheirGeometries)
{
    const ViewScene scene = SceneOf("quarter-car");
    const auto* const spring = Drawn(scene, scene.connectors, "Tyre");
    ASSERT_NE(spring, nullptr);
    EXPECT_EQ(spring->symbol, "spring");
    EXPECT_GT((spring->to.axis.GetOrigin() - spring->from.axis.GetOrigin()).Norm(), 0.1);
    EXPECT_NE(spring->from.isGround, spring->to.isGround);
    EXPECT_EQ(Drawn(scene, scene.connectors, "Front bushing")->symbol, "bushing");
    EXPECT_EQ(Drawn(scene, scene.connectors, "Torsion bar")->symbol, "torsion");
}

TEST(ViewScene, SpansASpringWithoutGeometryBetweenItsAttachments)
{
    Model model("w");
    const auto spring = model.Add<KARMPLinearSpring>("s");
    spring->SetFirstBody(model.Ground());
    spring->SetSecondBody(model.Body("a", {.at = KARMathPoint(2, 0, 0)}));
    spring->SetSecondAttachment({0, 1, 0});
    const ViewScene scene = CollectScene(*model.World(), "w");
    ASSERT_EQ(scene.connectors.size(), 1U);
    ExpectNear(scene.connectors[0].from.axis.GetOrigin(), {0, 0, 0});
    ExpectNear(scene.connectors[0].to.axis.GetOrigin(), {2, 1, 0});
}

TEST(ViewScene, LeadsCouplingsThroughTheJointsThatTheyRelate)
{
    const ViewScene scene = SceneOf("gear-pair");
    EXPECT_EQ(scene.joints.size(), 2U);
    ASSERT_EQ(scene.couplings.size(), 1U);
    EXPECT_EQ(scene.couplings[0].points.size(), 2U);
    EXPECT_EQ(scene.entities[static_cast<std::size_t>(scene.couplings[0].entity)].name, "Gear");
}

TEST(ViewScene, PutsPlanarBodiesIntoThePlaneOfTheirSketch)
{
    Model model("w");
    const auto carrier =
        model.Body("carrier", {.at = KARMathPoint(0, 10, 0), .towards = KARMathPoint(0, 11, 0)});
    const auto sketch = model.Attach<KARMPSketch>("sketch", carrier);
    sketch->SetPlane({{0, 0, 5}, {1, 0, 0}});
    const auto body = model.Add<KARMPBody2D>("flat");
    body->SetSketch(sketch);
    body->SetPosition(KARMathTransformation2D(KARMathVector2D(2, 3)));
    body->SetMass(1.0);
    body->SetCenterOfGravity({1, 0});
    const auto point = model.Add<KARMPPoint2D>("p");
    point->SetPoint({0.5, 0});
    point->SetBody(body.Handle());
    body->AddGeometry(point);
    const auto placed = [&] {
        const ViewScene scene = CollectScene(*model.World(), "w");
        return *Drawn(scene, scene.bodies, "flat");
    };
    KARMathVector first;
    KARMathVector second;
    KARMathPlane({0, 0, 5}, {1, 0, 0}).GetDirections(first, second);
    const KARMathPoint origin =
        PositionOf(carrier) * (KARMathPoint(0, 0, 5) + first * 2 + second * 3);
    ExpectNear(placed().position * KARMathPoint(), origin);
    ExpectNear(placed().position * KARMathPoint(0, 0, 1), origin + KARMathVector(0, 1, 0));
    EXPECT_EQ(placed().rods.size(), 1U) << "from the point to the centre of gravity";
    EXPECT_FALSE(placed().isGround);
    body->Set3DPosition(KARMathTransformation(KARMathVector(0, 0, 7)));
    ExpectNear(placed().position * KARMathPoint(), origin + KARMathVector(0, 0, 7));
    body->Fix2D();
    EXPECT_TRUE(placed().isGround);
}

TEST(ViewScene, TellsPlanarPinsAndGuidesByWhatTheyMakeCoincide)
{
    const ViewScene cam = SceneOf("cam-follower");
    EXPECT_EQ(Drawn(cam, cam.joints, "Cam bearing")->symbol, "revolute");
    EXPECT_EQ(Drawn(cam, cam.joints, "Guide")->symbol, "prismatic");
    EXPECT_EQ(Drawn(cam, cam.joints, "Contact")->symbol, "joint");
    EXPECT_TRUE(Drawn(cam, cam.joints, "Guide")->frames.at(0).isGround);
    EXPECT_FALSE(Drawn(cam, cam.bodies, "Follower")->rods.empty()) << "it has lines only";

    const ViewScene planar = SceneOf("seven-body-planar");
    const ViewScene spatial = SceneOf("seven-body");
    for (const ViewJoint& joint : planar.joints) {
        const std::string& name = planar.entities[static_cast<std::size_t>(joint.entity)].name;
        const auto* const other = Drawn(spatial, spatial.joints, "Revolute." + name);
        ASSERT_NE(other, nullptr) << name;
        EXPECT_EQ(joint.symbol, other->symbol);
        EXPECT_LT(
            (joint.frames.at(0).axis.GetOrigin() - other->frames.at(0).axis.GetOrigin()).Norm(),
            1e-9)
            << name;
    }
    EXPECT_EQ(planar.joints.size(), spatial.joints.size());
}

TEST(ViewScene, LeavesOutBodiesThatAreNowhereAndSaysSo)
{
    Model model("w");
    const auto lost = model.Body("lost");
    model.Point("p", lost, {1, 0, 0});
    model.Joint<KARMPRevolute>("hinge", model.Ground(), lost, Upright);
    lost->SetPosition(KARMathTransformation(KARMathVector(std::nan(""), 0, 0)), 0);
    const ViewScene scene = CollectScene(*model.World(), "w");
    EXPECT_EQ(Drawn(scene, scene.bodies, "lost"), nullptr);
    EXPECT_EQ(scene.joints.at(0).frames.size(), 1U) << "that of the ground";
    for (const ViewEntity& entity : scene.entities)
        if (entity.name == "lost")
            EXPECT_NE(entity.note, "");
    EXPECT_TRUE(std::isfinite(scene.symbolSize));
}

TEST(ViewScene, OfAnEmptyWorldIsEmptyAndUsable)
{
    const auto basicWorld = QOBBasicWorld::create(L"w");
    const auto world = KARMPWorld::create(basicWorld);
    const ViewScene scene = CollectScene(*world, "empty");
    EXPECT_TRUE(scene.joints.empty());
    EXPECT_GT(scene.symbolSize, 0.0);
}

TEST(ViewScene, SuitsItsSymbolsToTheRods)
{
    Model model("w");
    for (int i = 0; i < 100; ++i) {
        const KARMathPoint at(1.0 * i, 0, 0);
        const auto body = model.Body("b" + std::to_string(i), {.at = at});
        model.Point("p", body, at);
        model.Point("q", body, at + KARMathVector(1, 0, 0));
    }
    EXPECT_NEAR(CollectScene(*model.World(), "w").symbolSize, 0.3, 1e-9);
}

} // namespace

} // namespace karmp::tool
