#pragma once

#include "KAR3DRep.h"
#include "KARMathPoint.h"

#include <vector>

/// A node that is a chain of straight segments.
class KAR_API KAR3DPolylineRep final : public KAR3DRep
{
public:
    /// Makes a polyline, which is the caller's; null with fewer than two points or a coordinate
    /// that is not finite.
    static KAR3DPolylineRep* CreateRep(std::vector<KARMathPoint> points);

    /// Polyline, with the points that it joins in their order.
    KAR3DRepKind GetKind() const override { return KAR3DRepKind::Polyline; }
    const std::vector<KARMathPoint>& GetPoints() const { return m_points; }

private:
    explicit KAR3DPolylineRep(std::vector<KARMathPoint> points);
    ~KAR3DPolylineRep() override;
    KAR3DRep* CopyAlone() const override;

    std::vector<KARMathPoint> m_points;
};
