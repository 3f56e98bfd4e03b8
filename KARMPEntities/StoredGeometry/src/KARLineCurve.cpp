#include "KARLineCurve.h"

#include "GMKChecks.h"

KARLineCurve::KARLineCurve(const KARMathLine& line, double low, double high)
    : m_line(line), m_low(low), m_high(high)
{}

KARLineCurve::~KARLineCurve() = default;

KARLineCurve* KARLineCurve::Create(const KARMathLine& line, double low, double high)
{
    const bool valid = kar::IsFinite(line.GetOrigin()) && kar::IsFinite(line.GetDirection()) &&
                       line.GetDirection() != KARMathVector() && kar::IsRange(low, high);
    return valid ? new KARLineCurve(line, low, high) : nullptr;
}

void KARLineCurve::GetLimits(double& low, double& high) const
{
    low = m_low;
    high = m_high;
}

void KARLineCurve::Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const
{
    point = m_line.GetOrigin() + m_line.GetDirection() * parameter;
    tangent = m_line.GetDirection();
}
