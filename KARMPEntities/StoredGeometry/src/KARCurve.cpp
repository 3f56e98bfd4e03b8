#include "KARCurve.h"

KARCurve::KARCurve() = default;
KARCurve::~KARCurve() = default;

KARCrvParam KARCurve::CreateParam(double value) const
{
    return KARCrvParam(value);
}

KARMathPoint KARCurve::EvalPoint(double parameter) const
{
    KARMathPoint point;
    KARMathVector tangent;
    Evaluate(parameter, point, tangent);
    return point;
}

KARMathVector KARCurve::EvalTangent(double parameter) const
{
    KARMathPoint point;
    KARMathVector tangent;
    Evaluate(parameter, point, tangent);
    return tangent;
}
