#pragma once

#include "KARCurve.h"

#include <vector>

/// A chain of straight segments through points; segment i holds the parameters from i to i + 1.
class KAR_API KARPolylineCurve final : public KARCurve
{
    KAR_STORED_CLASS(KARPolylineCurve, KARCurve)

    /// Makes a polyline with one reference; null with fewer than two points or a coordinate that
    /// is not finite.
    static KARPolylineCurve* Create(std::vector<KARMathPoint> points);

    /// The points, in order.
    const std::vector<KARMathPoint>& GetPoints() const { return m_points; }

    void GetLimits(double& low, double& high) const override;
    void Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const override;
    KARCrvParam CreateParam(double value) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    explicit KARPolylineCurve(std::vector<KARMathPoint> points);
    ~KARPolylineCurve() override;
    std::size_t SegmentAt(double parameter) const;

    std::vector<KARMathPoint> m_points;
};
