// Holds the documents of the planar examples to docs/conventions.md, as they are after loading.
#include "ExampleWorld.h"
#include "KARMPDocuments.h"
#include "KARTextConversion.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace karmp::tool {

namespace {

constexpr double LengthTolerance = 1e-11; // m: documents keep twelve decimals
constexpr double AngleTolerance = 1e-11;

QOBSharedHandle<KARMPWorld> LoadExample(const std::string& name)
{
    const auto loaded = documents::LoadFile(KARMP_EXAMPLE_DOCUMENTS "/" + name + ".xml");
    EXPECT_TRUE(loaded.diagnostics.items.empty());
    return loaded.world;
}

KARMathTransformation2D PositionOf(const KARMPBody2D& body)
{
    KARMathTransformation2D position;
    body.GetPosition(position);
    return position;
}

double Cross(const KARMathVector2D& first, const KARMathVector2D& second)
{
    return first.GetX() * second.GetY() - first.GetY() * second.GetX();
}

double AngleOf(const KARMPBody2D& body)
{
    const KARMathVector2D x = PositionOf(body).GetMatrix().GetFirstColumn();
    return std::atan2(x.GetY(), x.GetX());
}

class PlanarExample : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        m_world = LoadExample(GetParam());
        ASSERT_TRUE(m_world);
    }

    /// Calls with every entity of a family that is a T.
    template <class Family, class T, class Visit>
    int ForEach(Visit visit) const
    {
        int count = 0;
        tool::ForEach<Family>(*m_world, [&](const QOBSharedHandle<Family>& entity) {
            if (const auto* object = dynamic_cast<const T*>(entity.get())) {
                SCOPED_TRACE(kar::ToUtf8(entity->getEntityName()));
                visit(*object);
                ++count;
            }
        });
        return count;
    }

    QOBSharedHandle<KARMPWorld> m_world;
};

/// Half of a joint: the body, and the geometry of the joint's constraint.
struct Side
{
    QOBSharedHandle<KARMPBody2D> body;
    QOBSharedHandle<KARMPGeometry2D> geometry;

    Side(const KARMPConstraint& constraint, int index)
    {
        QOBSharedHandle<KARMPGeometry> linked;
        constraint.GetLinkedGeometry(index, linked);
        geometry = QOBSharedHandle<KARMPGeometry2D>(linked);
        geometry->GetBody(body);
    }
    template <class T>
    const T* As() const
    {
        return dynamic_cast<const T*>(geometry.get());
    }
    /// The point, the centre of the circle or the origin of the line, in the plane.
    KARMathPoint2D Origin() const
    {
        KARMathPoint2D point;
        if (const auto* given = As<KARMPPoint2D>())
            given->GetPoint(point);
        else if (const auto* circle = As<KARMPCircle2D>())
            circle->GetPoint(point);
        else
            point = Line().GetOrigin();
        return PositionOf(*body) * point;
    }
    KARMathVector2D Along() const { return PositionOf(*body).GetMatrix() * Line().GetDirection(); }

private:
    KARMathLine2D Line() const
    {
        KARMathLine2D line;
        As<KARMPLine2D>()->GetLine(line);
        return line;
    }
};

void ExpectClosed(const Side& parent, const Side& child)
{
    const KARMathVector2D gap = child.Origin() - parent.Origin();
    if (const auto* circle = parent.As<KARMPCircle2D>()) {
        double radius = 0.0;
        circle->GetRadius(radius);
        ASSERT_NE(child.As<KARMPLine2D>(), nullptr);
        EXPECT_NEAR(std::abs(Cross(gap, child.Along())), radius, LengthTolerance);
    } else if (parent.As<KARMPLine2D>() != nullptr) {
        ASSERT_NE(child.As<KARMPLine2D>(), nullptr);
        EXPECT_NEAR(Cross(gap, parent.Along()), 0.0, LengthTolerance);
        EXPECT_NEAR(Cross(parent.Along(), child.Along()), 0.0, AngleTolerance);
    } else {
        ASSERT_NE(child.As<KARMPPoint2D>(), nullptr);
        EXPECT_NEAR(gap.Norm(), 0.0, LengthTolerance);
    }
}

TEST_P(PlanarExample, ClosesItsLoopsFromParentToChild)
{
    const int joints = ForEach<KARMPJoint, KARMPJoint2D>([](const KARMPJoint2D& joint) {
        std::array<QOBSharedHandle<KARMPBody2D>, 2> bodies;
        std::array<KARMPBodyOrientation::Enum, 2> orientations{};
        ASSERT_EQ(joint.GetLinkedBodyCount(), 2);
        joint.GetLinkedBody(0, bodies[0], orientations[0]);
        joint.GetLinkedBody(1, bodies[1], orientations[1]);
        EXPECT_EQ(orientations[0], KARMPBodyOrientation::Out);
        EXPECT_EQ(orientations[1], KARMPBodyOrientation::In);
        QOBSharedHandle<KARMPConstraint> constraint;
        ASSERT_EQ(joint.GetConstraint(0, constraint), KARSuccess);
        const Side parent(*constraint, 0);
        const Side child(*constraint, 1);
        EXPECT_EQ(parent.body, bodies[0]);
        EXPECT_EQ(child.body, bodies[1]);
        ExpectClosed(parent, child);
    });
    EXPECT_GT(joints, 0);
    EXPECT_EQ(joints, m_world->Count<KARMPJoint>());
}

TEST_P(PlanarExample, KnowsItsVariablesAsTheBodiesStand)
{
    int variables = 0;
    ForEach<KARMPJoint, KARMPJoint2D>([&](const KARMPJoint2D& joint) {
        QOBSharedHandle<KARMPConstraint> constraint;
        QOBSharedHandle<KARMPVariable> variable;
        ASSERT_EQ(joint.GetConstraint(0, constraint), KARSuccess);
        if (constraint->GetLinkedVariable(0, variable) != KARSuccess)
            return;
        double value = 0.0;
        variable->GetValue(value);
        const double angle =
            AngleOf(*Side(*constraint, 1).body) - AngleOf(*Side(*constraint, 0).body);
        EXPECT_NEAR(std::remainder(angle - value, 2.0 * std::numbers::pi), 0.0, AngleTolerance);
        ++variables;
    });
    EXPECT_GT(variables, 0);
}

TEST_P(PlanarExample, LiesInOneSketchThatTheGlobalBodyCarries)
{
    QOBSharedHandle<KARMPSketch> sketch;
    const int sketches = ForEach<KARMPGeometry, KARMPSketch>([&](const KARMPSketch& found) {
        QOBSharedHandle<KARMPBody> body;
        QOBSharedHandle<KARMPBody> global;
        found.GetBody(body);
        m_world->GetGlobalBody(global);
        EXPECT_EQ(body, global);
        sketch = QOBSharedHandle<KARMPSketch>(&found);
    });
    ASSERT_EQ(sketches, 1);
    const auto expectIn = [&](const auto& entity) {
        QOBSharedHandle<KARMPSketch> own;
        EXPECT_EQ(entity.GetSketch(own), KARSuccess);
        EXPECT_EQ(own, sketch);
    };
    ForEach<KARMPBody, KARMPBody2D>(expectIn);
    ForEach<KARMPGeometry, KARMPGeometry2D>(expectIn);
}

TEST_P(PlanarExample, GivesEachMovingBodyAMassAndAnInertiaThatAFlatBodyCanHave)
{
    const int bodies = ForEach<KARMPBody, KARMPBody2D>([](const KARMPBody2D& body) {
        const KARMath2x2Matrix turn = PositionOf(body).GetMatrix();
        EXPECT_NEAR(turn.GetFirstColumn().Norm(), 1.0, AngleTolerance);
        EXPECT_NEAR(Cross(turn.GetFirstColumn(), turn.GetSecondColumn()), 1.0, AngleTolerance);
        if (body.IsFixed2D())
            return;
        double mass = 0.0;
        KARMath2x2Matrix inertia;
        body.GetMass(mass);
        body.GetInertiaMatrix(inertia);
        EXPECT_GT(mass, 0.0);
        EXPECT_EQ(inertia(0, 1), inertia(1, 0));
        EXPECT_GE(inertia(0, 0), 0.0);
        EXPECT_GE(inertia(1, 1), 0.0);
        EXPECT_GT(inertia(0, 0) + inertia(1, 1), 0.0);
    });
    EXPECT_GT(bodies, 1);
}

TEST_P(PlanarExample, IsUnderTheEarthsGravityInItsPlaneOrNone)
{
    KARMathVector gravity;
    m_world->GetGravity(gravity);
    const double expected = GetParam() == "seven-body-planar" ? 0.0 : -9.81;
    EXPECT_EQ(gravity, KARMathVector(0.0, expected, 0.0));
}

INSTANTIATE_TEST_SUITE_P(Examples, PlanarExample, ::testing::ValuesIn(ExampleDocuments(true)),
                         [](const auto& example) { return TestNameOf(example.param); });

TEST(PlanarCam, KnowsHowFarItsFollowerWasLifted)
{
    const auto world = LoadExample("cam-follower");
    ASSERT_TRUE(world);
    int sensors = 0;
    ForEach<KARMPSensor>(*world, [&](const QOBSharedHandle<KARMPSensor>& entity) {
        const QOBSharedHandle<KARMPDisplacementSensor2D> sensor(entity);
        QOBSharedHandle<KARMPBody2D> follower;
        QOBSharedHandle<KARMPDisplacementSensor2D> back;
        ASSERT_EQ(sensor->GetBody(follower), KARSuccess);
        EXPECT_EQ(follower->GetDisplacementSensor(back), KARSuccess);
        EXPECT_EQ(back, sensor);
        KARMathTransformation2D displacement;
        sensor->GetDisplacement(displacement);
        // The disc's radius less its eccentricity is the lowest position of the face.
        const double lowest = 0.03 - 0.01;
        EXPECT_NEAR(PositionOf(*follower).GetVector().GetY() - lowest,
                    displacement.GetVector().GetY(), LengthTolerance);
        ++sensors;
    });
    EXPECT_EQ(sensors, 1);
}

/// The seven-body mechanism in space and in a sketch.
class SevenBodyTwice : public ::testing::Test
{
protected:
    template <class Family>
    static QOBSharedHandle<Family> Find(const KARMPWorld& world, const std::wstring& name)
    {
        QOBSharedHandle<Family> found;
        ForEach<Family>(world, [&](const QOBSharedHandle<Family>& entity) {
            if (entity->getEntityName() == name)
                found = entity;
        });
        return found;
    }
    QOBSharedHandle<KARMPBody2D> PlanarBody(const std::wstring& name) const
    {
        return QOBSharedHandle<KARMPBody2D>(Find<KARMPBody>(*m_planar, name));
    }

    QOBSharedHandle<KARMPWorld> m_spatial = LoadExample("seven-body");
    QOBSharedHandle<KARMPWorld> m_planar = LoadExample("seven-body-planar");
};

TEST_F(SevenBodyTwice, HasTheSameBodies)
{
    for (const wchar_t* name : {L"K1", L"K2", L"K3", L"K4", L"K5", L"K6", L"K7"}) {
        SCOPED_TRACE(kar::ToUtf8(name));
        const auto body = Find<KARMPBody>(*m_spatial, name);
        const auto planar = PlanarBody(name);
        const KARMathTransformation position = tool::PositionOf(*body);
        const KARMathTransformation2D inPlane = PositionOf(*planar);
        EXPECT_EQ(inPlane.GetVector().GetX(), position.GetVector().GetX());
        EXPECT_EQ(inPlane.GetVector().GetY(), position.GetVector().GetY());
        EXPECT_EQ(inPlane.GetMatrix()(1, 0), position.GetMatrix()(1, 0));
        double mass = 0.0;
        double planarMass = 0.0;
        KARMathPoint center;
        KARMathPoint2D planarCenter;
        KARMath3x3Matrix inertia;
        KARMath2x2Matrix planarInertia;
        body->GetMass(mass);
        planar->GetMass(planarMass);
        body->GetCenterOfGravity(center);
        planar->GetCenterOfGravity(planarCenter);
        body->GetInertiaMatrix(inertia);
        planar->GetInertiaMatrix(planarInertia);
        EXPECT_EQ(planarMass, mass);
        EXPECT_EQ(planarCenter, KARMathPoint2D(center.GetX(), center.GetY()));
        EXPECT_NEAR(planarInertia(0, 0) + planarInertia(1, 1), inertia(2, 2), 1e-12);
    }
    EXPECT_EQ(m_planar->Count<KARMPJoint>(), m_spatial->Count<KARMPJoint>());
}

double ConstantOf(const QOBSharedHandle<KARMPValue>& value)
{
    double number = 0.0;
    QOBSharedHandle<KARMPConstant>(value)->GetValue(number);
    return number;
}

TEST_F(SevenBodyTwice, IsDrivenByTheSameTorque)
{
    const QOBSharedHandle<KARMPJointForceActuator> drive(Find<KARMPActuator>(*m_spatial, L"Drive"));
    const QOBSharedHandle<KARMPSpatialForceActuator2D> planar(
        Find<KARMPActuator>(*m_planar, L"Drive"));
    QOBSharedHandle<KARMPValue> torque;
    KARMPSpatialForceActuator2D::TorqueComponents planarTorque;
    QOBSharedHandle<KARMPBody2D> body;
    drive->GetForce(torque);
    planar->GetTorque(planarTorque);
    planar->GetBody(body);
    EXPECT_EQ(ConstantOf(planarTorque[0]), ConstantOf(torque));
    EXPECT_EQ(body, PlanarBody(L"K1"));
}

// The law is asked at other angles of K3, too, than that at which the spring was set up.
TEST_F(SevenBodyTwice, IsPulledByTheSameSpring)
{
    const QOBSharedHandle<KARMPSpatialForceActuator2D> spring(
        Find<KARMPActuator>(*m_planar, L"Spring"));
    KARMPSpatialForceActuator2D::ForceComponents force;
    QOBSharedHandle<KARMPBody2D> body;
    KARMathPoint2D point;
    spring->GetForce(force);
    spring->GetBody(body);
    spring->GetApplicationPoint(point);
    ASSERT_EQ(body, PlanarBody(L"K3"));
    double gamma = 0.0;
    Find<KARMPVariable>(*m_planar, L"gamma")->GetValue(gamma);
    KARWBFactory* laws = nullptr;
    m_planar->GetWBFactory(laws);
    const KARMathPoint2D fixed(0.014, 0.072);
    for (const double turn : {0.0, -0.4, 0.7}) {
        KARMathTransformation2D position = PositionOf(*body);
        position.SetMatrix(KARMathTransformation2D::Rotation({}, gamma + turn).GetMatrix());
        const KARMathVector2D way = position * point - fixed;
        const double expected = 4530.0 * (0.07785 - way.Norm());
        laws->GetVariable("gamma")->SetValue(gamma + turn);
        std::array<double, 2> numbers{};
        for (std::size_t i = 0; i < 2; ++i) {
            KARWBEquation* equation = nullptr;
            QOBSharedHandle<KARMPExpression>(force[i])->GetValue(equation);
            ASSERT_FALSE(KARFailed(KARWBEvaluator().Evaluate(*equation, numbers[i])));
        }
        EXPECT_NEAR(numbers[0], expected * way.GetX() / way.Norm(), 1e-8);
        EXPECT_NEAR(numbers[1], expected * way.GetY() / way.Norm(), 1e-8);
    }
}

} // namespace

} // namespace karmp::tool
