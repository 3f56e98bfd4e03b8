#pragma once

#include "KARSurface.h"

#include <vector>

/// The degree and the knots of a spline along one parameter; knots - degree - 1 poles belong to it.
struct KARSplineBasis
{
    int degree = 0;
    std::vector<double> knots;
};

/// A spline surface, rational or not.
class KAR_API KARNurbsSurface final : public KARSurface
{
    KAR_STORED_CLASS(KARNurbsSurface, KARSurface)

    /// Makes a surface with one reference. The poles stand row by row, one row for each pole along
    /// u; weights are none or one a pole. Null where a spline curve would be refused, along u,
    /// along v or in the poles.
    static KARNurbsSurface* Create(KARSplineBasis u, KARSplineBasis v,
                                   std::vector<KARMathPoint> poles,
                                   std::vector<double> weights = {});

    /// Degree and knots along u.
    const KARSplineBasis& GetBasisU() const { return m_u; }
    /// Degree and knots along v.
    const KARSplineBasis& GetBasisV() const { return m_v; }
    /// The poles, row by row.
    const std::vector<KARMathPoint>& GetPoles() const { return m_poles; }
    /// The weights; none when the surface is not rational.
    const std::vector<double>& GetWeights() const { return m_weights; }

    KARSurLimits GetLimits() const override;
    void Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                  KARMathVector& alongV) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARNurbsSurface(KARSplineBasis u, KARSplineBasis v, std::vector<KARMathPoint> poles,
                    std::vector<double> weights);
    ~KARNurbsSurface() override;

    KARSplineBasis m_u;
    KARSplineBasis m_v;
    std::vector<KARMathPoint> m_poles;
    std::vector<double> m_weights;
};
