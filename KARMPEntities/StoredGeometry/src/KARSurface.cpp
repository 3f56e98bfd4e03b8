#include "KARSurface.h"

KARSurface::KARSurface() = default;
KARSurface::~KARSurface() = default;

int KARSurface::GetDepth() const
{
    return 0;
}

KARMathPoint KARSurface::EvalPoint(double u, double v) const
{
    KARMathPoint point;
    KARMathVector alongU;
    KARMathVector alongV;
    Evaluate(u, v, point, alongU, alongV);
    return point;
}

bool KARSurface::EvalNormal(double u, double v, KARMathVector& normal) const
{
    KARMathPoint point;
    KARMathVector alongU;
    KARMathVector alongV;
    Evaluate(u, v, point, alongU, alongV);
    KARMathVector cross = alongU.Cross(alongV);
    if (!cross.Normalize())
        return false;
    normal = cross;
    return true;
}
