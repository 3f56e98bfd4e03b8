#pragma once

#include "KARIMPEntityLoader.h"
#include "QOBSharedHandle.h"

#include <array>

class KARMPBody;
class KARMPValue;
class KARMathPoint;

/// What a solver attaches to a force and torque on a body. A negative status makes the actuator's
/// setter fail.
class KAR_API KARIMPSpatialForceActuatorLoader : public KARIMPEntityLoader
{
public:
    using Components = std::array<QOBSharedHandle<KARMPValue>, 3>;

    /// Brings the solver's force up to date as a whole; the library does not call it.
    virtual KARStatus UpdateForce() { return KARSuccess; }
    /// Take the actuator's values along x, y, z, each of which may be null.
    virtual KARStatus SetForce(const Components& force) = 0;
    virtual KARStatus SetTorque(const Components& torque) = 0;
    /// Takes the body.
    virtual KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) = 0;
    /// Takes the point at which the force acts.
    virtual KARStatus SetApplicationPoint(const KARMathPoint& point) = 0;
};
