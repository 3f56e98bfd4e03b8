#pragma once

#include "KARIMPEntityLoader.h"
#include "QOBSharedHandle.h"

class KARMPJoint;
class KARMPValue;

/// What a solver attaches to a force along a freedom of a joint. A negative status makes the
/// actuator's setter fail.
class KAR_API KARIMPJointForceActuatorLoader : public KARIMPEntityLoader
{
public:
    /// Brings the solver's force up to date as a whole; the library does not call it.
    virtual KARStatus UpdateForce() { return KARSuccess; }
    /// Takes the value of the force or torque; null when the actuator was given a null handle.
    virtual KARStatus SetForce(const QOBSharedHandle<KARMPValue>& force) = 0;
    /// Takes the index of the freedom, 0 to 5; the library does not call it.
    virtual KARStatus SetIndexDOF(int) { return KARSuccess; }
    /// Takes the joint.
    virtual KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint) = 0;
};
