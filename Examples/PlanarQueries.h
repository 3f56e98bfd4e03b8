#pragma once

#include "KARMPEntities.h"
#include "PlanarMechanismBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>

/// Where a point of a planar body lies in the plane.
inline KARMathPoint2D PointInPlane(const KARMPPoint2D& point)
{
    KARMathPoint2D position;
    QOBSharedHandle<KARMPBody2D> body;
    point.GetPoint(position);
    point.GetBody(body);
    return PositionOf(*body) * position;
}

/// The greatest distance along an axis between the two points of a pin of a planar mechanism, in m.
inline double PinError(const KARMPWorld& world)
{
    double error = 0.0;
    for (int index = 0; index < world.Count<KARMPConstraint>(); ++index) {
        QOBSharedHandle<KARMPConstraint> constraint;
        world.Get<KARMPConstraint>(index, constraint);
        std::array<KARMathPoint2D, 2> points;
        int found = 0;
        for (int side = 0; side < 2; ++side) {
            QOBSharedHandle<KARMPGeometry> geometry;
            constraint->GetLinkedGeometry(side, geometry);
            if (const auto* point = dynamic_cast<const KARMPPoint2D*>(geometry.get()))
                points[static_cast<std::size_t>(found++)] = PointInPlane(*point);
        }
        if (found == 2)
            error = std::max({error, std::abs(points[0].GetX() - points[1].GetX()),
                              std::abs(points[0].GetY() - points[1].GetY())});
    }
    return error;
}
