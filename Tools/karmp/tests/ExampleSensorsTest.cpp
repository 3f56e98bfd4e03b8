// Holds what the sensors of the example documents tell to mechanics, computed from nothing but the
// documents.
#include "ExampleWorld.h"
#include "KARMPDocuments.h"
#include "KARMPEntities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>

namespace karmp::tool {

namespace {

constexpr double Rounding = 1e-9; // documents keep twelve decimals

class SensorsOfAnExample : public ::testing::Test
{
protected:
    explicit SensorsOfAnExample(const std::string& document)
        : m_loaded(documents::LoadFile(KARMP_EXAMPLE_DOCUMENTS "/" + document))
    {}
    void SetUp() override
    {
        ASSERT_TRUE(m_loaded.diagnostics.items.empty());
        ASSERT_TRUE(m_loaded.world);
        m_loaded.world->GetGravity(m_gravity);
    }

    template <class Family, class T = Family>
    QOBSharedHandle<T> Find(const wchar_t* name) const
    {
        QOBSharedHandle<Family> found;
        ForEach<Family>(*m_loaded.world, [&](const QOBSharedHandle<Family>& entity) {
            if (entity->getEntityName() == name)
                found = entity;
        });
        EXPECT_TRUE(found);
        return QOBSharedHandle<T>(found);
    }
    template <class Sensor>
    QOBSharedHandle<Sensor> SensorOf(const wchar_t* name) const
    {
        return Find<KARMPSensor, Sensor>(name);
    }

    documents::LoadResult m_loaded;
    KARMathVector m_gravity;
};

void ExpectNear(const KARMathVector& one, const KARMathVector& other, double tolerance = Rounding)
{
    EXPECT_NEAR((one - other).Norm(), 0.0, tolerance);
}

/// The motion of a body's centre of gravity, or of another point of the body.
struct Motion
{
    explicit Motion(KARMPBody& body)
    {
        body.GetCenterOfGravity(point);
        MoveTo(body, PositionOf(body) * point);
    }
    Motion(KARMPBody& body, const KARMathPoint& place) { MoveTo(body, place); }

    KARMathPoint point; // in the world
    KARMathVector velocity;
    KARMathVector acceleration;
    KARMathVector rotation;
    KARMathVector rotationRate;

private:
    void MoveTo(KARMPBody& body, const KARMathPoint& place)
    {
        // The form with a point gives what is stored, also when no component is above 0, which the
        // shorter one takes for unknown after reading.
        KARMathPoint unused;
        body.GetVelocity(velocity, rotation, unused);
        body.GetAcceleration(acceleration, rotationRate);
        point = place;
        const KARMathVector arm = point - (KARMathPoint() + PositionOf(body).GetVector());
        velocity += rotation.Cross(arm);
        acceleration += rotationRate.Cross(arm) + rotation.Cross(rotation.Cross(arm));
    }
};

class InstrumentedCrank : public SensorsOfAnExample
{
protected:
    InstrumentedCrank() : SensorsOfAnExample("instrumented-crank.xml") {}

    /// Calls with each moving body and its mass.
    template <class Visit>
    void ForEachMovingBody(Visit visit) const
    {
        ForEach<KARMPBody>(
            *m_loaded.world,
            [&](const QOBSharedHandle<KARMPBody>& body) {
                double mass = 0.0;
                body->GetMass(mass);
                if (!body->IsFixed())
                    visit(*body, mass);
            });
    }
    /// How far an axis system stands from its body's origin.
    double DistanceOf(const wchar_t* name) const
    {
        KARMathAxis axis;
        Find<KARMPGeometry, KARMPAxisSystem>(name)->GetAxisSystem(axis);
        return (axis.GetOrigin() - KARMathPoint()).Norm();
    }
};

TEST_F(InstrumentedCrank, MeasuresTheStrokeOfTheClosedForm)
{
    const auto angleSensor = SensorOf<KARMPJointDOFSensor>(L"Crank angle sensor");
    const auto strokeSensor = SensorOf<KARMPJointDOFSensor>(L"Stroke sensor");
    double angle = 0.0;
    double velocity = 0.0;
    double stroke = 0.0;
    double strokeVelocity = 0.0;
    angleSensor->GetPosition(angle);
    angleSensor->GetVelocity(velocity);
    strokeSensor->GetPosition(stroke);
    strokeSensor->GetVelocity(strokeVelocity);
    const double crank = DistanceOf(L"Crank.Crank pin");
    const double rod = DistanceOf(L"Rod.Slider pin");
    const double across = crank * std::sin(angle);
    const double along = crank * std::cos(angle);
    const double rodAlong = std::sqrt(rod * rod - across * across);
    EXPECT_NEAR(stroke, along + rodAlong, Rounding);
    EXPECT_NEAR(strokeVelocity, -velocity * across * (1.0 + along / rodAlong), Rounding);
    EXPECT_GT(velocity, 0.0);
}

TEST_F(InstrumentedCrank, MovesTheFramesOfItsJointsTogether)
{
    ForEach<KARMPJoint>(
        *m_loaded.world,
        [](const QOBSharedHandle<KARMPJoint>& joint) {
            QOBSharedHandle<KARMPConstraint> constraint;
            joint->GetConstraint(0, constraint);
            std::array<KARMathVector, 2> velocities;
            std::array<KARMathVector, 2> accelerations;
            KARMathPoint place;
            KARMathVector along;
            for (int side = 1; side >= 0; --side) {
                QOBSharedHandle<KARMPGeometry> geometry;
                QOBSharedHandle<KARMPBody> body;
                KARMathAxis axis;
                constraint->GetLinkedGeometry(side, geometry);
                geometry->GetBody(body);
                QOBSharedHandle<KARMPAxisSystem>(geometry)->GetAxisSystem(axis);
                if (side == 1)
                    place = PositionOf(*body) * axis.GetOrigin();
                along = PositionOf(*body) * axis.GetThirdDirection();
                const Motion motion(*body, place);
                velocities[static_cast<std::size_t>(side)] = motion.velocity;
                accelerations[static_cast<std::size_t>(side)] = motion.acceleration;
            }
            const bool slides = dynamic_cast<const KARMPPrismatic*>(joint.operator->()) != nullptr;
            const auto bound = [&](const KARMathVector& v) { return slides ? v.Cross(along) : v; };
            ExpectNear(bound(velocities[0]), bound(velocities[1]));
            ExpectNear(bound(accelerations[0]), bound(accelerations[1]));
        });
}

TEST_F(InstrumentedCrank, MeasuresFreedomsAsTheBodiesMove)
{
    double velocity = 0.0;
    double acceleration = 0.0;
    const Motion crank(*Find<KARMPBody>(L"Crank"));
    SensorOf<KARMPJointDOFSensor>(L"Crank angle sensor")->GetVelocity(velocity);
    EXPECT_NEAR(velocity, crank.rotation.GetZ(), Rounding);
    const Motion slider(*Find<KARMPBody>(L"Slider"));
    SensorOf<KARMPJointDOFSensor>(L"Stroke sensor")->GetVelocity(velocity);
    SensorOf<KARMPJointDOFSensor>(L"Stroke sensor")->GetAcceleration(acceleration);
    EXPECT_NEAR(velocity, slider.velocity.GetX(), Rounding);
    EXPECT_NEAR(acceleration, slider.acceleration.GetX(), Rounding);
}

TEST_F(InstrumentedCrank, MovesItsSliderFromTheDeadCentreToItsPosition)
{
    QOBSharedHandle<KARMPBody> slider;
    KARMathTransformation displacement;
    const auto sensor = SensorOf<KARMPDisplacementSensor>(L"Displacement sensor");
    ASSERT_EQ(sensor->GetBody(slider), KARSuccess);
    sensor->GetDisplacement(displacement);
    const KARMathPoint deadCentre(DistanceOf(L"Crank.Crank pin") + DistanceOf(L"Rod.Slider pin"),
                                  0.0, 0.0);
    ExpectNear(displacement * deadCentre - KARMathPoint(), PositionOf(*slider).GetVector());
    EXPECT_EQ(displacement.GetMatrix(), PositionOf(*slider).GetMatrix());
}

/// Rod and slider get nothing else along the guide: gravity and the guide act across it.
TEST_F(InstrumentedCrank, MovesRodAndSliderByTheForceInTheCrankPin)
{
    QOBSharedHandle<KARMPBody> rod;
    std::array<double, 6> force{};
    const auto sensor = SensorOf<KARMPJointSpatialForceSensor>(L"Pin force sensor");
    ASSERT_EQ(sensor->GetBody(rod), KARSuccess);
    EXPECT_EQ(rod, Find<KARMPBody>(L"Rod"));
    ASSERT_EQ(sensor->GetSpatialForce(force.data()), KARSuccess);
    double needed = 0.0;
    ForEachMovingBody([&](KARMPBody& body, double mass) {
        if (body.getEntityName() != L"Crank")
            needed += mass * Motion(body).acceleration.GetX();
    });
    EXPECT_NEAR(force[0], needed, Rounding);
    EXPECT_GT(std::abs(needed), 1.0);
}

TEST_F(InstrumentedCrank, TakesThePowerOfItsMotor)
{
    double torque = 0.0;
    double velocity = 0.0;
    double maximum = 0.0;
    QOBSharedHandle<KARMPMotor> motor;
    const auto sensor = SensorOf<KARMPMotorForceSensor>(L"Motor sensor");
    ASSERT_EQ(sensor->GetMotor(motor), KARSuccess);
    sensor->GetForce(torque, nullptr, nullptr);
    motor->GetVelocity(velocity);
    motor->GetMaxForce(maximum);
    double power = 0.0;
    ForEachMovingBody([&](KARMPBody& body, double mass) {
        KARMath3x3Matrix inertia;
        body.GetInertiaMatrix(inertia);
        const Motion motion(body);
        power += mass * motion.velocity.Dot(motion.acceleration - m_gravity) +
                 inertia(2, 2) * motion.rotation.Dot(motion.rotationRate);
    });
    EXPECT_NEAR(torque * velocity, power, 1e-8);
    EXPECT_LT(std::abs(torque), maximum);
}

class Collision : public SensorsOfAnExample
{
protected:
    Collision() : SensorsOfAnExample("collision.xml") {}

    /// Calls with each geometry of a kind that a body has.
    template <class Geometry, class Visit>
    static void ForEachGeometry(const KARMPBody& body, Visit visit)
    {
        for (int index = 0; index < body.GetGeometryCount(); ++index) {
            QOBSharedHandle<KARMPGeometry> geometry;
            body.GetGeometry(index, geometry);
            if (const auto* found = dynamic_cast<const Geometry*>(geometry.operator->()))
                visit(*found);
        }
    }
    /// How far a point stands from the nearest ball of a body.
    static double DistanceFromBalls(const KARMPBody& body, const KARMathPoint& point)
    {
        double distance = std::numeric_limits<double>::infinity();
        ForEachGeometry<KARMPSphere>(body, [&](const KARMPSphere& sphere) {
            KARMathPoint center;
            double radius = 0.0;
            sphere.GetCenter(center);
            sphere.GetRadius(radius);
            distance = std::min(distance, point.DistanceTo(PositionOf(body) * center) - radius);
        });
        return distance;
    }
    /// The face of a body, in the world.
    static KARMathPlane FaceOf(const KARMPBody& body)
    {
        KARMathPlane face;
        ForEachGeometry<KARMPPlane>(body, [&](const KARMPPlane& plane) { plane.GetPlane(face); });
        return {PositionOf(body) * face.GetOrigin(),
                PositionOf(body) * KARMathVector(face.GetNormal())};
    }
    /// Calls with each contact of the sensor.
    template <class Visit>
    void ForEachContact(Visit visit) const
    {
        const auto sensor = SensorOf<KARMPCollisionSensor>(L"Contact sensor");
        ASSERT_EQ(sensor->GetContactForceDataCount(), 2);
        for (int index = 0; index < 2; ++index) {
            KARMPContactForceData contact;
            sensor->GetContactForceData(index, contact);
            visit(contact);
        }
    }
};

TEST_F(Collision, HasItsContactsOnBothSurfaces)
{
    ForEachContact([](const KARMPContactForceData& contact) {
        const KARMathPlane face = FaceOf(*contact.secondBody);
        const KARMathVector normal = face.GetNormal();
        EXPECT_NEAR(DistanceFromBalls(*contact.firstBody, contact.firstContactPoint), 0.0,
                    Rounding);
        EXPECT_NEAR((contact.secondContactPoint - face.GetOrigin()).Dot(normal), 0.0, Rounding);
        ExpectNear(contact.secondContactPoint - contact.firstContactPoint,
                   contact.penetrationDepth * normal);
        ExpectNear(contact.secondNormalVector, normal);
        ExpectNear(contact.firstNormalVector, -normal);
        EXPECT_GT(contact.penetrationDepth, 0.0);
    });
}

TEST_F(Collision, CarriesTheWeightByItsContacts)
{
    const auto body = Find<KARMPBody>(L"Dumbbell");
    double mass = 0.0;
    body->GetMass(mass);
    const Motion center(*body);
    KARMathVector force = mass * m_gravity;
    KARMathVector moment;
    ForEachContact([&](const KARMPContactForceData& contact) {
        EXPECT_EQ(contact.firstBody, body);
        force += contact.firstContactForce;
        moment += contact.firstContactTorque +
                  (contact.firstContactPoint - center.point).Cross(contact.firstContactForce);
        ExpectNear(contact.secondContactForce, -contact.firstContactForce);
        ExpectNear(contact.firstNormalForce + contact.firstFrictionForce,
                   contact.firstContactForce);
        ExpectNear(contact.secondNormalForce + contact.secondFrictionForce,
                   contact.secondContactForce);
        EXPECT_NEAR(contact.firstNormalForce.Cross(contact.firstNormalVector).Norm(), 0.0,
                    Rounding);
        EXPECT_LT(contact.firstNormalForce.Dot(contact.firstNormalVector), 0.0);
    });
    ExpectNear(force, {});
    ExpectNear(moment, {});
}

/// A ball on a thin layer on a rigid base, each element of which is a spring of its own.
TEST_F(Collision, PressesAsDeepAsTheLayerOfItsRuleYields)
{
    QOBSharedHandle<KARMPCollisionRule> rule;
    ASSERT_EQ(SensorOf<KARMPCollisionSensor>(L"Contact sensor")->GetCollisionRule(rule),
              KARSuccess);
    double youngModulus = 0.0;
    double poisson = 0.0;
    double thickness = 0.0;
    rule->GetSecondCollidableParameters(youngModulus, poisson, thickness);
    QOBSharedHandle<KARMPBody> first;
    QOBSharedHandle<KARMPBody> second;
    rule->GetFirstBody(first);
    rule->GetSecondBody(second);
    double radius = 0.0;
    ForEachGeometry<KARMPSphere>(*first,
                                 [&](const KARMPSphere& sphere) { sphere.GetRadius(radius); });
    const double modulus =
        youngModulus * (1.0 - poisson) / ((1.0 + poisson) * (1.0 - 2.0 * poisson));
    ForEachContact([&](const KARMPContactForceData& contact) {
        EXPECT_EQ(contact.firstBody, first);
        EXPECT_EQ(contact.secondBody, second);
        const double depth = contact.penetrationDepth;
        EXPECT_NEAR(contact.firstNormalForce.Norm(),
                    std::numbers::pi * radius * modulus / thickness * depth * depth, 1e-6);
        EXPECT_LT(depth, thickness / 4.0);
    });
}

TEST_F(Collision, TellsABodyWithinTheClearance)
{
    const auto sensor = SensorOf<KARMPProximitySensor>(L"Proximity sensor");
    KARMPProximitySensorData data;
    QOBSharedHandle<KARMPBody> body;
    bool status = false;
    sensor->GetProximitySensorData(data);
    sensor->GetProximitySensorStatus(status);
    ASSERT_EQ(data.GetSensorBody(body), KARSuccess);
    ASSERT_EQ(data.GetBodyInGroupCount(), 2);
    int nearBodies = 0;
    for (int index = 0; index < 2; ++index) {
        QOBSharedHandle<KARMPBody> other;
        data.GetBodyInGroup(index, other);
        const KARMathPlane face = FaceOf(*other);
        double gap = std::numeric_limits<double>::infinity();
        ForEachGeometry<KARMPSphere>(*body, [&](const KARMPSphere& sphere) {
            KARMathPoint center;
            double radius = 0.0;
            sphere.GetCenter(center);
            sphere.GetRadius(radius);
            const KARMathVector way = PositionOf(*body) * center - face.GetOrigin();
            gap = std::min(gap, way.Dot(face.GetNormal()) - radius);
        });
        EXPECT_GT(gap, 0.0);
        nearBodies += gap < data.GetClearance() ? 1 : 0;
    }
    EXPECT_EQ(nearBodies, 1);
    EXPECT_TRUE(status);
    EXPECT_TRUE(data.GetUseGroupContext());
    EXPECT_TRUE(data.GetUseClearance());
    EXPECT_FALSE(data.GetInverseResult());
}

TEST_F(Collision, KeepsWhatMovesAndWhatIsFixedInALayerEach)
{
    const auto both = Find<KARMPInteraction, KARMPCollisionInterLayer>(L"Moving on fixed parts");
    QOBSharedVector<KARMPEntity> moving;
    QOBSharedVector<KARMPEntity> fixed;
    ASSERT_EQ(both->GetEntities(0, moving), KARSuccess);
    ASSERT_EQ(both->GetEntities(1, fixed), KARSuccess);
    const auto isFixed = [](const QOBSharedHandle<KARMPEntity>& entity) {
        return QOBSharedHandle<KARMPBody>(entity)->IsFixed();
    };
    EXPECT_EQ(moving.size(), 2U);
    EXPECT_EQ(fixed.size(), 2U);
    EXPECT_TRUE(std::none_of(moving.begin(), moving.end(), isFixed));
    EXPECT_TRUE(std::all_of(fixed.begin(), fixed.end(), isFixed));
}

} // namespace

} // namespace karmp::tool
