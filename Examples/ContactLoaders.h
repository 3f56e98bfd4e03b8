#pragma once

#include "KARMPEntities.h"
#include "MechanismQueries.h"

#include <algorithm>
#include <limits>
#include <numbers>
#include <vector>

/// What resists a ball of a radius on a thin elastic layer with a rigid base, in N per squared
/// depth: each element of the layer is a spring of its own.
inline double LayerStiffness(double youngModulus, double poisson, double thickness, double radius)
{
    const double modulus =
        youngModulus * (1.0 - poisson) / ((1.0 + poisson) * (1.0 - 2.0 * poisson));
    return std::numbers::pi * modulus * radius / thickness;
}

struct Ball
{
    KARMathPoint center;
    double radius = 0.0;
};

/// How far a ball stands from a face, on its side of the normal; negative when it is in it.
inline double GapOf(const Ball& ball, const KARMathPlane& face)
{
    return (ball.center - face.GetOrigin()).Dot(face.GetNormal()) - ball.radius;
}

/// Calls with each geometry of a kind.
template <class Geometry, class Visit>
void ForEachGeometry(const KARMPBody& body, Visit visit)
{
    for (int index = 0; index < body.GetGeometryCount(); ++index) {
        QOBSharedHandle<KARMPGeometry> geometry;
        body.GetGeometry(index, geometry);
        if (const auto* found = dynamic_cast<const Geometry*>(geometry.operator->()))
            visit(*found);
    }
}

/// Calls with each ball of a body and each face of another one, in the world.
template <class Visit>
void ForEachBallAndFace(const KARMPBody& balls, const KARMPBody& faces, Visit visit)
{
    ForEachGeometry<KARMPSphere>(
        balls,
        [&](const KARMPSphere& sphere) {
            Ball ball;
            sphere.GetCenter(ball.center);
            sphere.GetRadius(ball.radius);
            ball.center = PositionOf(balls) * ball.center;
            ForEachGeometry<KARMPPlane>(
                faces,
                [&](const KARMPPlane& plane) {
                    KARMathPlane face;
                    plane.GetPlane(face);
                    visit(ball, KARMathPlane(PositionOf(faces) * face.GetOrigin(),
                                             PositionOf(faces) * KARMathVector(face.GetNormal())));
                });
        });
}

/// Finds the contacts of the balls of the rule's first body with the faces of its second, which has
/// the elastic layer.
class ContactLoader : public KARIMPCollisionSensorLoader
{
public:
    explicit ContactLoader(KARMPCollisionSensor& sensor) : m_sensor(sensor) {}

    /// A sensor that is given contacts one by one keeps one of each pair of bodies. These two have
    /// several, which it is given at once, and their pair for the count.
    KARStatus Update() override
    {
        QOBSharedHandle<KARMPCollisionRule> rule;
        if (m_sensor.GetCollisionRule(rule) != KARSuccess)
            return KARFailure;
        std::vector<KARMPContactForceData> contacts;
        QOBSharedHandle<KARMPBody> first;
        QOBSharedHandle<KARMPBody> second;
        rule->GetFirstBody(first);
        rule->GetSecondBody(second);
        ForEachBallAndFace(*first, *second, [&](const Ball& ball, const KARMathPlane& face) {
            if (GapOf(ball, face) >= 0.0)
                return;
            contacts.push_back(ContactOf(ball, face, *rule));
            contacts.back().firstBody = first;
            contacts.back().secondBody = second;
        });
        m_sensor.Reset();
        if (!contacts.empty())
            m_sensor.AddContactData({first, second});
        return m_sensor.SetContactForceData(contacts);
    }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    /// Nothing slides, so that there is no friction.
    static KARMPContactForceData ContactOf(const Ball& ball, const KARMathPlane& face,
                                           const KARMPCollisionRule& rule)
    {
        double youngModulus = 0.0;
        double poisson = 0.0;
        double thickness = 0.0;
        rule.GetSecondCollidableParameters(youngModulus, poisson, thickness);
        const KARMathVector normal = face.GetNormal();
        KARMPContactForceData contact;
        contact.penetrationDepth = -GapOf(ball, face);
        contact.firstContactPoint = ball.center - ball.radius * normal;
        contact.secondContactPoint = contact.firstContactPoint + contact.penetrationDepth * normal;
        contact.firstNormalVector = -normal;
        contact.secondNormalVector = normal;
        contact.firstNormalForce = LayerStiffness(youngModulus, poisson, thickness, ball.radius) *
                                   contact.penetrationDepth * contact.penetrationDepth * normal;
        contact.secondNormalForce = -contact.firstNormalForce;
        contact.firstContactForce = contact.firstNormalForce;
        contact.secondContactForce = contact.secondNormalForce;
        return contact;
    }

    KARMPCollisionSensor& m_sensor; // owns the loader
};

/// Tells whether a face of the group is nearer to a ball of the sensor's body than the clearance.
class ProximityLoader : public KARIMPProximitySensorLoader
{
public:
    explicit ProximityLoader(KARMPProximitySensor& sensor) : m_sensor(sensor) {}

    KARStatus Update() override
    {
        KARMPProximitySensorData data;
        QOBSharedHandle<KARMPBody> body;
        m_sensor.GetProximitySensorData(data);
        if (data.GetSensorBody(body) != KARSuccess)
            return KARFailure;
        double gap = std::numeric_limits<double>::infinity();
        for (int index = 0; index < data.GetBodyInGroupCount(); ++index) {
            QOBSharedHandle<KARMPBody> other;
            data.GetBodyInGroup(index, other);
            ForEachBallAndFace(*body, *other, [&](const Ball& ball, const KARMathPlane& face) {
                gap = std::min(gap, GapOf(ball, face));
            });
        }
        const double limit = data.GetUseClearance() ? data.GetClearance() : 0.0;
        return m_sensor.SetProximitySensorStatus((gap < limit) != data.GetInverseResult());
    }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    KARMPProximitySensor& m_sensor; // owns the loader
};
