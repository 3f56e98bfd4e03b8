#pragma once

#include "KARIMPBodyLoader.h"

class KARMathAxis2D;
class KARMathLine2D;
class KARMathPoint2D;
class KARMathTransformation2D;
class KARMathVector2D;
class KARMPBody2D;

/// What a solver attaches to a planar body: it hears how the body is moved in its plane and tells
/// how it moves. The base's HoldBody and ReleaseBody hold and release the solver's body as a whole;
/// ReleaseBody is called when a transformation was applied.
class KAR_API KARIMPBody2DLoader : public KARIMPBodyLoader
{
public:
    /// Moves the solver's body by a transformation relative to where it is.
    virtual KARStatus ApplyTransformation(const KARMathTransformation2D& relative) = 0;
    /// Gives the solver's body its velocities.
    virtual KARStatus SetLoaderVelocity(const KARMathVector2D& linear, double angular) = 0;
    /// Reads the velocities at a point, which the solver may set.
    virtual KARStatus ReadVelocity(KARMathVector2D& linear, double& angular,
                                   KARMathPoint2D& point) = 0;
    /// Reads the accelerations at a point, which the solver may set.
    virtual KARStatus ReadAcceleration(KARMathVector2D& linear, double& angular,
                                       KARMathPoint2D& point) = 0;
    /// Reads velocities and accelerations at once; the arguments are those of the base's operation,
    /// in the plane.
    virtual KARStatus ReadVelocityAndAcceleration(
        KARMathVector2D& linearVelocity, double& angularVelocity,
        KARMathVector2D& linearAcceleration, double& angularAcceleration, KARMathPoint2D& point,
        unsigned char& hasAxis, KARMathLine2D& axis, karmp::PointWhereToComputeVelAndAcc where,
        const KARMathPoint2D* at, const QOBSharedHandle<KARMPBody2D>& reference,
        const KARMathAxis2D* frame) = 0;
    /// Keeps the solver's body where it is in the plane, and lets it move again.
    virtual KARStatus HoldBody2D() = 0;
    virtual KARStatus ReleaseBody2D() = 0;
    /// Keeps the plane of the solver's body where it is in space, and lets it move again.
    virtual KARStatus HoldBody3D() = 0;
    virtual KARStatus ReleaseBody3D() = 0;
    /// Has the solver compute velocities and accelerations in a kinematic simulation too.
    virtual KARStatus ActivateComputationForKIN() = 0;

    /// A body in a plane is not moved in space: KARNotImplemented, as for all below.
    KARStatus ApplyTransformation(const KARMathTransformation&) override
    {
        return KARNotImplemented;
    }
    KARStatus SetLoaderVelocity(const KARMathVector&, const KARMathVector&) override
    {
        return KARNotImplemented;
    }
    KARStatus ReadVelocity(KARMathVector&, KARMathVector&, KARMathPoint&) override
    {
        return KARNotImplemented;
    }
    KARStatus ReadAcceleration(KARMathVector&, KARMathVector&, KARMathPoint&) override
    {
        return KARNotImplemented;
    }
    KARStatus ReadVelocityAndAcceleration(KARMathVector&, KARMathVector&, KARMathVector&,
                                          KARMathVector&, KARMathPoint&, unsigned char&,
                                          KARMathLine&, karmp::PointWhereToComputeVelAndAcc,
                                          const KARMathPoint*, const QOBSharedHandle<KARMPBody>&,
                                          const KARMathAxis*) override
    {
        return KARNotImplemented;
    }
};
