// The rods by which a body without a representation is drawn.
#pragma once

#include "ViewScene.h"

#include <vector>

namespace karmp::tool {

/// The points of a list, each once: of those that lie within a tolerance only the first is kept.
std::vector<KARMathPoint> WithoutDoubles(const std::vector<KARMathPoint>& points, double tolerance);

/// The shortest rods that hold points together: one less than there are points. Of many points
/// each is held by the first one.
std::vector<ViewRod> RodsBetween(const std::vector<KARMathPoint>& points);

} // namespace karmp::tool
