#pragma once

#include "KARCrvParam.h"
#include "KARIGMKObject.h"
#include "KARMathPoint.h"

/// A curve in space. A planar curve is one that lies in a plane.
class KAR_API KARCurve : public KARIGMKObject
{
    KAR_STORED_CLASS(KARCurve, KARIGMKObject)

    /// The curve's own range of parameters; low is below high, both are finite.
    virtual void GetLimits(double& low, double& high) const = 0;
    /// The point at a parameter and the derivative there, which is not scaled to length 1.
    /// Outside the range a line and an arc go on, the others stay at their end.
    virtual void Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const = 0;
    /// Turns a number into a parameter of this curve. The number is kept, also outside the range.
    virtual KARCrvParam CreateParam(double value) const;

    /// The point at a parameter.
    KARMathPoint EvalPoint(double parameter) const;
    /// The derivative at a parameter.
    KARMathVector EvalTangent(double parameter) const;

protected:
    KARCurve();
    ~KARCurve() override;
};
