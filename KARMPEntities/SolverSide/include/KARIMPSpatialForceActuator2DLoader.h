#pragma once

#include "KARIMPEntityLoader.h"
#include "QOBSharedHandle.h"

#include <array>

class KARMPBody2D;
class KARMPValue;
class KARMathPoint2D;

/// What a solver attaches to a force and torque on a body in a plane. A negative status makes the
/// actuator's setter fail.
class KAR_API KARIMPSpatialForceActuator2DLoader : public KARIMPEntityLoader
{
public:
    using ForceComponents = std::array<QOBSharedHandle<KARMPValue>, 2>;
    using TorqueComponents = std::array<QOBSharedHandle<KARMPValue>, 1>;

    /// Brings the solver's force up to date as a whole; the library does not call it.
    virtual KARStatus UpdateForce() { return KARSuccess; }
    /// Takes the actuator's values along x and y, each of which may be null.
    virtual KARStatus SetForce(const ForceComponents& force) = 0;
    /// Takes the actuator's value about the normal of the plane, which may be null.
    virtual KARStatus SetTorque(const TorqueComponents& torque) = 0;
    /// Takes the body; the library does not call it.
    virtual KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>&) { return KARSuccess; }
    /// Takes the point at which the force acts.
    virtual KARStatus SetApplicationPoint(const KARMathPoint2D& point) = 0;
};
