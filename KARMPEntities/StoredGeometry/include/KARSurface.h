#pragma once

#include "KARIGMKObject.h"
#include "KARMathPoint.h"

/// The range of a surface's two parameters.
struct KARSurLimits
{
    double uLow = 0.0;
    double uHigh = 0.0;
    double vLow = 0.0;
    double vHigh = 0.0;
};

/// A surface in space, with two parameters u and v.
class KAR_API KARSurface : public KARIGMKObject
{
    KAR_STORED_CLASS(KARSurface, KARIGMKObject)

    /// The surface's own range of parameters; each low is below its high, all are finite.
    virtual KARSurLimits GetLimits() const = 0;
    /// The point at two parameters and the derivatives along u and v. Outside the range a spline
    /// stays at its border, the others go on.
    virtual void Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                          KARMathVector& alongV) const = 0;
    /// Number of surfaces that this one is built on, one upon the other.
    virtual int GetDepth() const;

    /// The point at two parameters.
    KARMathPoint EvalPoint(double u, double v) const;
    /// Gives the unit normal, along u x along v; false, with the argument untouched, where
    /// there is none.
    bool EvalNormal(double u, double v, KARMathVector& normal) const;

protected:
    KARSurface();
    ~KARSurface() override;
};
