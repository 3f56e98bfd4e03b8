#include "KARPlaneSurface.h"

#include "GMKChecks.h"

KARPlaneSurface::KARPlaneSurface(const KARMathPoint& origin, const KARMathVector& first,
                                 const KARMathVector& second, const KARSurLimits& limits)
    : m_origin(origin), m_first(first), m_second(second), m_limits(limits)
{}

KARPlaneSurface::~KARPlaneSurface() = default;

KARPlaneSurface* KARPlaneSurface::Create(const KARMathPoint& origin, const KARMathVector& first,
                                         const KARMathVector& second, const KARSurLimits& limits)
{
    const bool valid =
        kar::IsFinite(origin) && kar::IsOrthonormal(first, second) && kar::IsRange(limits);
    return valid ? new KARPlaneSurface(origin, first, second, limits) : nullptr;
}

void KARPlaneSurface::GetDirections(KARMathVector& first, KARMathVector& second) const
{
    first = m_first;
    second = m_second;
}

void KARPlaneSurface::Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                               KARMathVector& alongV) const
{
    point = m_origin + m_first * u + m_second * v;
    alongU = m_first;
    alongV = m_second;
}
