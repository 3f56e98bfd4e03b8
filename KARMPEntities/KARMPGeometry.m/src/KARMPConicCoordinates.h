// What stands in "Coordinates" of the kinds that are given in a plane by a centre and the direction
// of their major axis, in order.
#pragma once

#include "KARMPCoordinates.h"

namespace karmp {

/// Of a kind with a curvature.
auto ConicCoordinates(auto& center, auto& majorDirection, auto& normal, auto& curvature)
{
    return std::tuple(Triple(CentreNames, center), Triple(DirectionNames, majorDirection),
                      Triple(NormalNames, normal), Number(L"curvature", curvature));
}

/// Of a kind with two radii.
auto ConicCoordinates(auto& center, auto& majorDirection, auto& normal, auto& majorRadius,
                      auto& minorRadius)
{
    return std::tuple(Triple(CentreNames, center), Triple(DirectionNames, majorDirection),
                      Triple(NormalNames, normal), Number(L"major_radius", majorRadius),
                      Number(L"minor_radius", minorRadius));
}

} // namespace karmp
