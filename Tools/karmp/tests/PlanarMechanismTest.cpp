// What the tool makes of planar bodies, joints and geometries.
#include "KARMPBody2D.h"
#include "KARMPCoincidence.h"
#include "KARMPCurve2D.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPDocuments.h"
#include "KARMPPoint2D.h"
#include "KARMPSketch.h"
#include "KARMPUserDefined2D.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "Mobility.h"
#include "QOBBasicWorld.h"
#include "ToolFixture.h"

#include <string>
#include <vector>

namespace karmp::tool {

namespace {

using Body2D = QOBSharedHandle<KARMPBody2D>;
using Sketch = QOBSharedHandle<KARMPSketch>;

/// A four-bar linkage in the plane y = 2, with a sensor of the crank's displacement.
class FourBar : public Tool
{
protected:
    struct Bar
    {
        const wchar_t* name;
        KARMathPoint2D from;
        KARMathPoint2D to;
        double mass;
    };

    FourBar()
    {
        // The sketch's first direction is the world's x, its second the world's z reversed.
        m_sketch->SetPlane({{0.0, 2.0, 0.0}, {0.0, 1.0, 0.0}});
        QOBSharedHandle<KARMPBody> global;
        m_world->GetGlobalBody(global);
        m_sketch->SetBody(global);
        global->AddGeometry(m_sketch);
        Add<KARMPGeometry>(m_sketch, L"sketch");
        const std::vector<KARMathPoint2D> pins{{0.0, 0.0}, {0.0, 1.0}, {4.0, 3.0}, {4.0, 0.0}};
        const wchar_t* const names[] = {L"Ground", L"Crank", L"Coupler", L"Rocker"};
        const double masses[] = {0.0, 1.0, 4.0, 3.0};
        for (std::size_t i = 0; i < 4; ++i)
            m_bodies.push_back(AddBar(names[i], pins[(i + 3) % 4], pins[i], masses[i]));
        m_bodies[0]->Fix2D();
        for (std::size_t i = 0; i < 4; ++i)
            AddPin(L"Pin " + std::to_wstring(i + 1), m_bodies[i], m_bodies[(i + 1) % 4], pins[i]);
        const auto sensor = KARMPDisplacementSensor2D::create(L"Turn");
        sensor->SetBody(m_bodies[1]);
        m_bodies[1]->SetDisplacementSensor(sensor);
        Add<KARMPSensor>(sensor, L"turn");
    }

    template <class Family, class T>
    void Add(const QOBSharedHandle<T>& entity, const std::wstring& identifier)
    {
        entity->SetIdentifier(identifier);
        m_basicWorld->addLogicalChild(entity);
        EXPECT_EQ(m_world->Add(QOBSharedHandle<Family>(entity)), KARSuccess);
    }

    // The body's axes are the sketch's, its origin is at the bar's middle.
    Body2D AddBar(const std::wstring& name, KARMathPoint2D from, KARMathPoint2D to, double mass)
    {
        const Body2D body = KARMPBody2D::create(name);
        body->SetSketch(m_sketch);
        body->SetPosition(KARMathTransformation2D((from - KARMathPoint2D()) + (to - from) * 0.5));
        body->SetMass(mass);
        Add<KARMPBody>(body, L"body " + name);
        return body;
    }

    void AddPin(const std::wstring& name, const Body2D& parent, const Body2D& child,
                KARMathPoint2D at)
    {
        const auto joint = KARMPUserDefined2D::create(name);
        const auto constraint = KARMPCoincidence::create(name + L" points");
        const auto variable = KARMPVariable::create(name + L" angle");
        joint->LinkToBody(parent, KARMPBodyOrientation::Out);
        joint->LinkToBody(child, KARMPBodyOrientation::In);
        joint->AddConstraint(constraint);
        constraint->SetJoint(joint);
        for (const Body2D& body : {parent, child}) {
            body->LinkToJoint(joint);
            const auto point = KARMPPoint2D::create(name + L" on " + body->getEntityName());
            KARMathTransformation2D position;
            body->GetPosition(position);
            point->SetPoint(at - position.GetVector());
            point->SetBody(body);
            point->SetSketch(m_sketch);
            body->AddGeometry(point);
            point->LinkToConstraint(constraint);
            constraint->LinkToGeometry(point);
            Add<KARMPGeometry>(point, point->getEntityName());
        }
        constraint->LinkToVariable(variable);
        variable->LinkToConstraint(constraint);
        Add<KARMPJoint>(joint, name);
        Add<KARMPConstraint>(constraint, name + L" points");
        Add<KARMPVariable>(variable, name + L" angle");
    }

    /// The document of the linkage as it is.
    std::string Saved(const std::string& name = "four-bar.xml")
    {
        EXPECT_FALSE(documents::SaveFile(m_world, File(name)).HasErrors());
        return File(name);
    }

    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);
    Sketch m_sketch = KARMPSketch::create(L"Plane");
    std::vector<Body2D> m_bodies;
};

TEST_F(FourBar, HasNoFindings)
{
    const Outcome check = Run("check " + Saved());
    EXPECT_EQ(check.code, 0) << check.output;
}

TEST_F(FourBar, IsWarnedOfWithoutItsPlane)
{
    const std::string text = ReadFile(Saved());
    const std::string reference = "<Sketch id=\"sketch\" name=\"Plane\"/>";
    const auto crank = text.find("name=\"Crank\"");
    ASSERT_NE(crank, std::string::npos);
    const auto found = text.find(reference, crank);
    ASSERT_NE(found, std::string::npos);
    const std::string file =
        Write("loose.xml", std::string(text).replace(found, reference.size(), ""));
    const Outcome loose = Run("check " + file);
    EXPECT_EQ(loose.code, 1);
    ExpectContains(loose.output, "[body-without-sketch] at /KARMPDocument/World/Bodies/Body2D[2]");
    const auto sketch = text.find("<Sketch id=\"sketch\" name=\"Plane\" isActive=\"yes\"");
    ASSERT_NE(sketch, std::string::npos);
    const auto body = text.find("<Body ", sketch);
    const Outcome floating =
        Run("check " +
            Write("floating.xml", std::string(text).erase(body, text.find("/>", body) + 2 - body)));
    ExpectContains(floating.output, "[sketch-without-body]");
}

TEST_F(FourBar, InfoCountsMassesAndFreedomsInThePlane)
{
    const std::string info = Run("info " + Saved()).output;
    ExpectContains(info, "  Moving bodies               3\n");
    ExpectContains(info, "  Fixed bodies                2\n");
    ExpectContains(info, "  Moving bodies without mass  0\n");
    ExpectContains(info, "  Total mass                  8\n");
    // (1 (0, 0.5) + 4 (2, 2) + 3 (4, 1.5)) / 8 in the sketch.
    QOBSharedHandle<KARMPBody> global;
    KARMathVector first;
    KARMathVector second;
    KARMathPlane plane;
    m_sketch->GetPlane(plane);
    plane.GetDirections(first, second);
    const KARMathPoint center = plane.GetOrigin() + first * 2.5 + second * 1.625;
    std::ostringstream expected;
    expected << "  Centre of mass              (" << center.GetX() << ", " << center.GetY() << ", "
             << center.GetZ() << ")\n";
    ExpectContains(info, expected.str());
    ExpectContains(info, "  As a spatial mechanism  1\n  As a planar mechanism   1\n");
    ExpectContains(info, "DisplacementSensor2D \"Turn\"  Body2D \"Crank\"\n");
}

TEST_F(FourBar, CenterOfMassMovesWithTheBodyThatCarriesThePlane)
{
    QOBSharedHandle<KARMPBody> carrier;
    m_world->GetGlobalBody(carrier);
    carrier->SetPosition(KARMathTransformation(KARMathVector(100.0, 0.0, 0.0)), 0);
    const std::string info = Run("info " + Saved()).output;
    ExpectContains(info, "Centre of mass              (10");
}

TEST(PlanarMobility, CountsThreeFreedomsForEachPlanarBody)
{
    const Mobility mobility = EstimateMobility(0, {}, {.movingBodies = 3, .removed = 8});
    EXPECT_EQ(mobility.planar, 1);
    EXPECT_EQ(mobility.spatial, 1);
    EXPECT_TRUE(mobility.mayBePlanar);
    const Mobility mixed =
        EstimateMobility(1, {{"KARMPRevolute", 1}}, {.movingBodies = 1, .removed = 2});
    EXPECT_EQ(mixed.spatial, 2);
    EXPECT_EQ(mixed.planar, 2);
}

TEST_F(FourBar, JointWithoutVariablesIsCountedByItsConstraints)
{
    QOBSharedHandle<KARMPConstraint> constraint;
    m_world->Get(0, constraint);
    QOBSharedHandle<KARMPVariable> variable;
    constraint->GetLinkedVariable(0, variable);
    constraint->RemoveVariable(variable);
    const Mobility mobility = EstimateMobility(*m_world);
    EXPECT_EQ(mobility.planar, 1);
    EXPECT_EQ(mobility.notCounted, 0);
}

TEST_F(FourBar, TreeNamesPlanesAndPlanarLinks)
{
    const std::string tree = Run("tree " + Saved()).output;
    ExpectContains(tree, "  Body2D \"Crank\"\n");
    ExpectContains(tree, "    Sketch: Sketch \"Plane\"\n");
    ExpectContains(tree, "    Bodies2D: Body2D \"Ground\" (Out), Body2D \"Crank\" (In)\n");
    ExpectContains(tree, "    Body2D: Body2D \"Crank\"\n");
}

TEST_F(FourBar, GraphClosesItsLoopThroughPlanarJoints)
{
    const std::string graph = Run("graph " + Saved()).output;
    ExpectContains(graph, "5 bodies, 4 joints, 1 closed loop\nestimated mobility 1 in the plane");
    ExpectContains(graph, "\"Crank\nin Plane\n1 kg\"");
    ExpectContains(graph, "Ground<br/>in Plane");
    ExpectContains(graph, "/ / / /");
    ExpectContains(graph, "penwidth=2.5");
}

TEST_F(FourBar, DiffTellsPlanarMovesAndTurns)
{
    const std::string before = Saved("before.xml");
    KARMathTransformation2D position;
    m_bodies[1]->GetPosition(position);
    m_bodies[1]->SetPosition(KARMathTransformation2D(KARMathVector2D(0.25, 0.0)) * position);
    m_bodies[2]->SetPosition({{{0.0, 1.0}, {-1.0, 0.0}}, {2.0, 2.0}});
    m_bodies[3]->SetMass(3.5);
    const Outcome diff = Run("diff " + before + ' ' + Saved("after.xml"));
    EXPECT_EQ(diff.code, 1);
    ExpectContains(diff.output, "Body2D \"Crank\"\n  moved: (0, 0.5) becomes (0.25, 0.5)\n");
    ExpectContains(diff.output,
                   "Body2D \"Coupler\"\n  turned: (1, 0, 0, 1) becomes (0, 1, -1, 0)\n");
    ExpectContains(diff.output, "Weight/Mass: 3 becomes 3.5\n");
    EXPECT_EQ(diff.output.find("turned: (1, 0, 0, 1) becomes (1"), std::string::npos);
}

TEST_F(FourBar, TranslationAndRotationAreComparedEachByItself)
{
    m_bodies[1]->SetPosition(KARMathTransformation2D(KARMathVector2D(1e6, 1e6)));
    const std::string before = Saved("before.xml");
    m_bodies[1]->SetPosition({{{1.0 + 1e-6, 0.0}, {0.0, 1.0}}, {1e6, 1e6}});
    // Far less than the tolerance of the translation, more than that of the rotation.
    const Outcome diff = Run("diff --tolerance 1e-9 " + before + ' ' + Saved("after.xml"));
    ExpectContains(diff.output, "turned: ");
    EXPECT_EQ(diff.output.find("moved: "), std::string::npos) << diff.output;
}

TEST_F(FourBar, ExtractOfPlanarBodiesHasTheirPlane)
{
    const std::string whole = Saved();
    const Outcome extract =
        Run("extract " + whole + " --body Crank Coupler --with all -o " + File("part.xml"));
    EXPECT_EQ(extract.code, 0) << extract.output;
    // The global body that carries the plane is another one in the extract.
    ExpectContains(extract.output, "Joints: UserDefined2D \"Pin 1\"\n");
    const std::string tree = Run("tree " + File("part.xml")).output;
    ExpectContains(tree, "  Sketch \"Plane\"\n");
    ExpectContains(tree, "    Sketch: Sketch \"Plane\"\n");
    ExpectContains(tree, "  UserDefined2D \"Pin 2\"\n");
    ExpectContains(tree, "  DisplacementSensor2D \"Turn\"\n");
    EXPECT_EQ(tree.find("\"Pin 4\"\n"), std::string::npos);
    EXPECT_EQ(tree.find("\"Rocker\"\n"), std::string::npos);
    const std::string diff = Run("diff " + whole + ' ' + File("part.xml")).output;
    EXPECT_EQ(diff.find("Body2D \"Crank\"\n  moved"), std::string::npos) << diff;
    const Outcome reach =
        Run("extract " + whole + " --body Crank --reach 1 -q -o " + File("near.xml"));
    EXPECT_EQ(reach.code, 0);
    const std::string near = Run("tree " + File("near.xml")).output;
    ExpectContains(near, "  Body2D \"Ground\"\n");
    ExpectContains(near, "  Body2D \"Coupler\"\n");
    EXPECT_EQ(near.find("  Body2D \"Rocker\"\n"), std::string::npos);
}

} // namespace

} // namespace karmp::tool
