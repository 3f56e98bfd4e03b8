// How bodies move, and what they need for it.
#include "KARMPBody.h"
#include "KARMPModelOptions.h"
#include "KARMPModelReading.h"
#include "KARMPWorld.h"
#include "KARMathLine.h"

namespace karmp::model {

namespace {

KARMathVector GravityAt(const KARMPBody& body)
{
    QOBSharedHandle<KARMPWorld> world;
    KARMathVector gravity;
    if (body.getWorld() && !KARFailed(body.GetWorld(world)))
        world->GetGravity(gravity);
    return gravity;
}

// The centre of gravity in body axes.
KARMathPoint CenterIn(const KARMPBody& body)
{
    KARMathPoint center;
    body.GetCenterOfGravity(center);
    return center;
}

} // namespace

KARMathPoint CenterOf(const Ref<KARMPBody>& body)
{
    return PositionOf(body) * CenterIn(*body);
}

KARMathPoint Motion::Origin() const
{
    return KARMathPoint() + position.GetVector();
}

Motion Motion::At(const KARMathPoint& point) const
{
    const KARMathVector arm = position.GetMatrix() * (point - KARMathPoint());
    const KARMathVector turning = angularVelocity.Cross(arm);
    return {position * KARMathTransformation(point - KARMathPoint()), velocity + turning,
            angularVelocity,
            acceleration + angularAcceleration.Cross(arm) + angularVelocity.Cross(turning),
            angularAcceleration};
}

Motion Motion::Turning(const KARMathVector& axis, double angle, double rate,
                       double angularRate) const
{
    KARMathVector unit = axis;
    const KARMathTransformation place(position.GetVector());
    if (!unit.Normalize())
        return {place, velocity, {}, acceleration, {}};
    return {place * KARMathTransformation::Rotation(KARMathLine({}, axis), angle), velocity,
            rate * unit, acceleration, angularRate * unit};
}

Motion MotionOf(const Ref<KARMPBody>& body)
{
    Motion motion;
    motion.position = PositionOf(body);
    body->GetVelocity(motion.velocity, motion.angularVelocity);
    body->GetAcceleration(motion.acceleration, motion.angularAcceleration);
    return motion;
}

KARStatus Move(const Ref<KARMPBody>& body, const Motion& motion)
{
    KARStatus status = KARSuccess;
    for (const KARStatus next :
         {body->SetPosition(motion.position, 0),
          body->SetVelocity(motion.velocity, motion.angularVelocity),
          body->SetAcceleration(motion.acceleration, motion.angularAcceleration)})
        status = status == KARSuccess ? next : status;
    return status;
}

SpatialForce NeededForce(const Ref<KARMPBody>& body)
{
    double mass = 0.0;
    KARMath3x3Matrix inertia;
    body->GetMass(mass);
    body->GetInertiaMatrix(inertia);
    const Motion motion = MotionOf(body).At(CenterIn(*body));
    const KARMath3x3Matrix& turn = motion.position.GetMatrix();
    const KARMath3x3Matrix inWorld = turn * inertia * turn.Transpose();
    return {mass * (motion.acceleration - GravityAt(*body)),
            inWorld * motion.angularAcceleration +
                motion.angularVelocity.Cross(inWorld * motion.angularVelocity)};
}

} // namespace karmp::model
