#pragma once

#include "KARStatus.h"

namespace karmp {

/// The last known velocities and accelerations of a body, in space or in a plane.
template <class Vector, class Angular>
struct MotionState
{
    Vector linearVelocity;
    Angular angularVelocity{};
    Vector linearAcceleration;
    Angular angularAcceleration{};
    /// The velocities mean something.
    bool velocitySet = false;

    /// The same without known velocities, as a copied body has it.
    MotionState Copied() const
    {
        MotionState copy = *this;
        copy.velocitySet = false;
        return copy;
    }
    /// Gives the velocities; a failure while there are none.
    KARStatus GetVelocity(Vector& linear, Angular& angular) const
    {
        if (!velocitySet)
            return KARFailure;
        linear = linearVelocity;
        angular = angularVelocity;
        return KARSuccess;
    }
    KARStatus SetAcceleration(const Vector& linear, const Angular& angular)
    {
        linearAcceleration = linear;
        angularAcceleration = angular;
        return KARSuccess;
    }
    KARStatus GetAcceleration(Vector& linear, Angular& angular) const
    {
        linear = linearAcceleration;
        angular = angularAcceleration;
        return KARSuccess;
    }
};

} // namespace karmp
