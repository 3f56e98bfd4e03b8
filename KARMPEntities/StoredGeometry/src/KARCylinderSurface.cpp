#include "KARCylinderSurface.h"

#include "GMKChecks.h"

#include <cmath>

KARCylinderSurface::KARCylinderSurface(const KARMathPoint& origin, const KARMathVector& first,
                                       const KARMathVector& second, double radius,
                                       const KARSurLimits& limits)
    : m_origin(origin), m_first(first), m_second(second), m_radius(radius), m_limits(limits)
{}

KARCylinderSurface::~KARCylinderSurface() = default;

KARCylinderSurface* KARCylinderSurface::Create(const KARMathPoint& origin,
                                               const KARMathVector& first,
                                               const KARMathVector& second, double radius,
                                               const KARSurLimits& limits)
{
    const bool valid = kar::IsFinite(origin) && kar::IsOrthonormal(first, second) &&
                       kar::IsFinite(radius) && radius > 0.0 && kar::IsRange(limits) &&
                       kar::IsWithinOneTurn(limits.uLow, limits.uHigh);
    return valid ? new KARCylinderSurface(origin, first, second, radius, limits) : nullptr;
}

void KARCylinderSurface::GetDirections(KARMathVector& first, KARMathVector& second) const
{
    first = m_first;
    second = m_second;
}

void KARCylinderSurface::Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                                  KARMathVector& alongV) const
{
    const double c = m_radius * std::cos(u);
    const double s = m_radius * std::sin(u);
    alongU = m_second * c - m_first * s;
    alongV = m_first.Cross(m_second);
    point = m_origin + m_first * c + m_second * s + alongV * v;
}
