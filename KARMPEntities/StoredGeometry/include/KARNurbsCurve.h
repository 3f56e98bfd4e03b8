#pragma once

#include "KARCurve.h"

#include <vector>

/// A spline curve, rational or not.
class KAR_API KARNurbsCurve final : public KARCurve
{
    KAR_STORED_CLASS(KARNurbsCurve, KARCurve)

    /// The highest degree of a spline.
    static constexpr int MaximumDegree = 25;

    /// Makes a curve with one reference. Null when a number is not finite, the degree is not from
    /// 1 to MaximumDegree, there are no degree + 1 poles, the knots are not as many as poles +
    /// degree + 1, descend, stand more than degree + 1 times, or leave no range, or the weights
    /// are neither none (a curve that is not rational) nor one above 0 a pole.
    static KARNurbsCurve* Create(int degree, std::vector<double> knots,
                                 std::vector<KARMathPoint> poles, std::vector<double> weights = {});

    /// The degree.
    int GetDegree() const { return m_degree; }
    /// The knots, each as often as it counts.
    const std::vector<double>& GetKnots() const { return m_knots; }
    /// The poles.
    const std::vector<KARMathPoint>& GetPoles() const { return m_poles; }
    /// The weights; none when the curve is not rational.
    const std::vector<double>& GetWeights() const { return m_weights; }

    void GetLimits(double& low, double& high) const override;
    void Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const override;
    KARCrvParam CreateParam(double value) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARNurbsCurve(int degree, std::vector<double> knots, std::vector<KARMathPoint> poles,
                  std::vector<double> weights);
    ~KARNurbsCurve() override;

    int m_degree;
    std::vector<double> m_knots;
    std::vector<KARMathPoint> m_poles;
    std::vector<double> m_weights;
};
