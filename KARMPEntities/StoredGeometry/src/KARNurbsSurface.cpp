#include "KARNurbsSurface.h"

#include "GMKSpline.h"
#include "KARNurbsCurve.h"

#include <array>
#include <utility>

namespace {

std::size_t PoleCount(const KARSplineBasis& basis)
{
    return basis.knots.size() - static_cast<std::size_t>(basis.degree) - 1;
}

using PoleRow = std::array<kar::WeightedPoint, KARNurbsCurve::MaximumDegree + 1>;

} // namespace

KARNurbsSurface::KARNurbsSurface(KARSplineBasis u, KARSplineBasis v,
                                 std::vector<KARMathPoint> poles, std::vector<double> weights)
    : m_u(std::move(u)), m_v(std::move(v)), m_poles(std::move(poles)), m_weights(std::move(weights))
{}

KARNurbsSurface::~KARNurbsSurface() = default;

KARNurbsSurface* KARNurbsSurface::Create(KARSplineBasis u, KARSplineBasis v,
                                         std::vector<KARMathPoint> poles,
                                         std::vector<double> weights)
{
    if (!kar::IsBasis(u.degree, u.knots) || !kar::IsBasis(v.degree, v.knots) ||
        !kar::ArePoles(PoleCount(u) * PoleCount(v), poles, weights))
        return nullptr;
    return new KARNurbsSurface(std::move(u), std::move(v), std::move(poles), std::move(weights));
}

KARSurLimits KARNurbsSurface::GetLimits() const
{
    return {m_u.knots[static_cast<std::size_t>(m_u.degree)], m_u.knots[PoleCount(m_u)],
            m_v.knots[static_cast<std::size_t>(m_v.degree)], m_v.knots[PoleCount(m_v)]};
}

void KARNurbsSurface::Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                               KARMathVector& alongV) const
{
    const kar::SplineSpan spanU = kar::FindSpan(m_u.degree, m_u.knots, u);
    const kar::SplineSpan spanV = kar::FindSpan(m_v.degree, m_v.knots, v);
    const auto degreeU = static_cast<std::size_t>(m_u.degree);
    const auto degreeV = static_cast<std::size_t>(m_v.degree);
    const std::size_t rowLength = PoleCount(m_v);

    // Along v first: a value and a derivative for each row; along u they become the surface's.
    PoleRow values;
    PoleRow derivatives;
    for (std::size_t i = 0; i <= degreeU; ++i) {
        PoleRow row;
        const std::size_t start = (spanU.span - degreeU + i) * rowLength + spanV.span - degreeV;
        for (std::size_t j = 0; j <= degreeV; ++j)
            row[j] = kar::WeightedPole(m_poles, m_weights, start + j);
        kar::DeBoor(m_v.degree, m_v.knots, spanV, row.data(), values[i], derivatives[i]);
    }
    kar::WeightedPoint value;
    kar::WeightedPoint byU;
    kar::WeightedPoint byV;
    kar::WeightedPoint mixed;
    kar::DeBoor(m_u.degree, m_u.knots, spanU, values.data(), value, byU);
    kar::DeBoor(m_u.degree, m_u.knots, spanU, derivatives.data(), byV, mixed);
    point = kar::Project(value);
    alongU = kar::ProjectDerivative(value, byU);
    alongV = kar::ProjectDerivative(value, byV);
}
