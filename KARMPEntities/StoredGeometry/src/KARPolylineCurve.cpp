#include "KARPolylineCurve.h"

#include "GMKChecks.h"

#include <algorithm>
#include <utility>

KARPolylineCurve::KARPolylineCurve(std::vector<KARMathPoint> points) : m_points(std::move(points))
{}

KARPolylineCurve::~KARPolylineCurve() = default;

KARPolylineCurve* KARPolylineCurve::Create(std::vector<KARMathPoint> points)
{
    if (points.size() < 2 || !kar::AllFinite(points))
        return nullptr;
    return new KARPolylineCurve(std::move(points));
}

void KARPolylineCurve::GetLimits(double& low, double& high) const
{
    low = 0.0;
    high = static_cast<double>(m_points.size() - 1);
}

std::size_t KARPolylineCurve::SegmentAt(double parameter) const
{
    const std::size_t last = m_points.size() - 2;
    // Written so that a parameter that is not a number lands on the first segment.
    if (!(parameter > 0.0))
        return 0;
    return parameter >= static_cast<double>(last) ? last : static_cast<std::size_t>(parameter);
}

KARCrvParam KARPolylineCurve::CreateParam(double value) const
{
    return KARCrvParam(value, static_cast<int>(SegmentAt(value)));
}

void KARPolylineCurve::Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const
{
    const std::size_t segment = SegmentAt(parameter);
    const double offset = parameter - static_cast<double>(segment);
    const double share = offset > 0.0 ? std::min(offset, 1.0) : 0.0;
    tangent = m_points[segment + 1] - m_points[segment];
    // The end is taken as it stands, free of the rounding of a sum.
    point = share == 1.0 ? m_points[segment + 1] : m_points[segment] + tangent * share;
}
