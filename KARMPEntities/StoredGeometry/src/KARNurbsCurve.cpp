#include "KARNurbsCurve.h"

#include "GMKSpline.h"

#include <array>
#include <utility>

KARNurbsCurve::KARNurbsCurve(int degree, std::vector<double> knots, std::vector<KARMathPoint> poles,
                             std::vector<double> weights)
    : m_degree(degree),
      m_knots(std::move(knots)),
      m_poles(std::move(poles)),
      m_weights(std::move(weights))
{}

KARNurbsCurve::~KARNurbsCurve() = default;

KARNurbsCurve* KARNurbsCurve::Create(int degree, std::vector<double> knots,
                                     std::vector<KARMathPoint> poles, std::vector<double> weights)
{
    if (!kar::IsBasis(degree, knots) ||
        !kar::ArePoles(knots.size() - static_cast<std::size_t>(degree) - 1, poles, weights))
        return nullptr;
    return new KARNurbsCurve(degree, std::move(knots), std::move(poles), std::move(weights));
}

void KARNurbsCurve::GetLimits(double& low, double& high) const
{
    const auto degree = static_cast<std::size_t>(m_degree);
    low = m_knots[degree];
    high = m_knots[m_knots.size() - degree - 1];
}

KARCrvParam KARNurbsCurve::CreateParam(double value) const
{
    const kar::SplineSpan found = kar::FindSpan(m_degree, m_knots, value);
    return KARCrvParam(value, static_cast<int>(found.span) - m_degree);
}

void KARNurbsCurve::Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const
{
    const kar::SplineSpan found = kar::FindSpan(m_degree, m_knots, parameter);
    const auto degree = static_cast<std::size_t>(m_degree);
    std::array<kar::WeightedPoint, MaximumDegree + 1> poles;
    for (std::size_t i = 0; i <= degree; ++i)
        poles[i] = kar::WeightedPole(m_poles, m_weights, found.span - degree + i);
    kar::WeightedPoint value;
    kar::WeightedPoint derivative;
    kar::DeBoor(m_degree, m_knots, found, poles.data(), value, derivative);
    point = kar::Project(value);
    tangent = kar::ProjectDerivative(value, derivative);
}
