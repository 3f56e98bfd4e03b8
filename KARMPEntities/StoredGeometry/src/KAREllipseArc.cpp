#include "KAREllipseArc.h"

#include "GMKChecks.h"

#include <cmath>

KAREllipseArc::KAREllipseArc(const KARMathPoint& center, const KARMathVector& first,
                             const KARMathVector& second, double firstRadius, double secondRadius,
                             double low, double high)
    : m_center(center),
      m_first(first),
      m_second(second),
      m_firstRadius(firstRadius),
      m_secondRadius(secondRadius),
      m_low(low),
      m_high(high)
{}

KAREllipseArc::~KAREllipseArc() = default;
KARCircleArc::~KARCircleArc() = default;

bool KAREllipseArc::Accepts(const KARMathPoint& center, const KARMathVector& first,
                            const KARMathVector& second, double firstRadius, double secondRadius,
                            double low, double high)
{
    return kar::IsFinite(center) && kar::IsOrthonormal(first, second) &&
           kar::IsFinite(firstRadius) && firstRadius > 0.0 && kar::IsFinite(secondRadius) &&
           secondRadius > 0.0 && kar::IsRange(low, high) && kar::IsWithinOneTurn(low, high);
}

KAREllipseArc* KAREllipseArc::Create(const KARMathPoint& center, const KARMathVector& first,
                                     const KARMathVector& second, double firstRadius,
                                     double secondRadius, double low, double high)
{
    if (!Accepts(center, first, second, firstRadius, secondRadius, low, high))
        return nullptr;
    return new KAREllipseArc(center, first, second, firstRadius, secondRadius, low, high);
}

KARCircleArc* KARCircleArc::Create(const KARMathPoint& center, const KARMathVector& first,
                                   const KARMathVector& second, double radius, double low,
                                   double high)
{
    if (!Accepts(center, first, second, radius, radius, low, high))
        return nullptr;
    return new KARCircleArc(center, first, second, radius, radius, low, high);
}

void KAREllipseArc::GetDirections(KARMathVector& first, KARMathVector& second) const
{
    first = m_first;
    second = m_second;
}

void KAREllipseArc::GetLimits(double& low, double& high) const
{
    low = m_low;
    high = m_high;
}

void KAREllipseArc::Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const
{
    const KARMathVector first = m_first * m_firstRadius;
    const KARMathVector second = m_second * m_secondRadius;
    const double c = std::cos(parameter);
    const double s = std::sin(parameter);
    point = m_center + first * c + second * s;
    tangent = second * c - first * s;
}
