#pragma once

#include "KARIMPEntityLoader.h"
#include "QOBSharedHandle.h"

class KARMathAxis;
class KARMathLine;
class KARMathPoint;
class KARMathTransformation;
class KARMathVector;
class KARMPBody;

namespace karmp {

enum PointWhereToComputeVelAndAcc : int;

} // namespace karmp

/// What a solver attaches to a body: it hears how the body is moved and tells how it moves.
class KAR_API KARIMPBodyLoader : public KARIMPEntityLoader
{
public:
    /// Moves the solver's body by a transformation relative to where it is.
    virtual KARStatus ApplyTransformation(const KARMathTransformation& relative) = 0;
    /// Gives the solver's body its velocities.
    virtual KARStatus SetLoaderVelocity(const KARMathVector& linear,
                                        const KARMathVector& angular) = 0;
    /// Reads the velocities at a point, which the solver may set.
    virtual KARStatus ReadVelocity(KARMathVector& linear, KARMathVector& angular,
                                   KARMathPoint& point) = 0;
    /// Reads the accelerations at a point, which the solver may set.
    virtual KARStatus ReadAcceleration(KARMathVector& linear, KARMathVector& angular,
                                       KARMathPoint& point) = 0;
    /// Keeps the solver's body where it is.
    virtual KARStatus HoldBody() = 0;
    /// Lets the solver's body move; also called when a transformation was applied.
    virtual KARStatus ReleaseBody() = 0;
    /// Reads velocities and accelerations at once. `point` is where they hold, `hasAxis` and `axis`
    /// are the solver's to fill. `where` says at which point they are wanted, with `at` that point
    /// when it is a given one, `reference` the body they are relative to and `frame` the axis
    /// system they are expressed in; each may be null.
    virtual KARStatus ReadVelocityAndAcceleration(
        KARMathVector& linearVelocity, KARMathVector& angularVelocity,
        KARMathVector& linearAcceleration, KARMathVector& angularAcceleration, KARMathPoint& point,
        unsigned char& hasAxis, KARMathLine& axis, karmp::PointWhereToComputeVelAndAcc where,
        const KARMathPoint* at, const QOBSharedHandle<KARMPBody>& reference,
        const KARMathAxis* frame) = 0;
};
