#pragma once

#include "KARIMPEntityLoader.h"
#include "QOBSharedHandle.h"

class KARMPValue;

/// What a solver attaches to a motor, to be told of the values that it drives its variable by. A
/// negative status makes the motor's setter fail.
class KAR_API KARIMPMotorLoader : public KARIMPEntityLoader
{
public:
    /// Take the value of a quantity, in the unit of the value's physical quantity.
    virtual KARStatus SetPosition(const QOBSharedHandle<KARMPValue>& position) = 0;
    virtual KARStatus SetVelocity(const QOBSharedHandle<KARMPValue>& velocity) = 0;
    virtual KARStatus SetAcceleration(const QOBSharedHandle<KARMPValue>& acceleration) = 0;
    virtual KARStatus SetMaxForce(const QOBSharedHandle<KARMPValue>& maxForce) = 0;
};
