#pragma once

#include "KARIMPSpatialForceActuatorLoader.h"

class KARMPBody2D;
class KARMathPoint2D;

/// What a solver attaches to a force and torque on a body in a plane. A negative status makes the
/// actuator's setter fail.
class KAR_API KARIMPSpatialForceActuator2DLoader : public KARIMPSpatialForceActuatorLoader
{
public:
    using ForceComponents = std::array<QOBSharedHandle<KARMPValue>, 2>;
    using TorqueComponents = std::array<QOBSharedHandle<KARMPValue>, 1>;

    /// Takes the actuator's values along x and y, each of which may be null.
    virtual KARStatus SetForce(const ForceComponents& force) = 0;
    /// Takes the actuator's value about the normal of the plane, which may be null.
    virtual KARStatus SetTorque(const TorqueComponents& torque) = 0;
    /// Takes the body on which it acts.
    virtual KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>& body) = 0;
    /// Takes the point at which the force acts.
    virtual KARStatus SetApplicationPoint(const KARMathPoint2D& point) = 0;

    /// A force in a plane is not one in space: KARNotImplemented, as in the three that follow.
    KARStatus SetForce(const Components&) override { return KARNotImplemented; }
    KARStatus SetTorque(const Components&) override { return KARNotImplemented; }
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>&) override { return KARNotImplemented; }
    KARStatus SetApplicationPoint(const KARMathPoint&) override { return KARNotImplemented; }
};
