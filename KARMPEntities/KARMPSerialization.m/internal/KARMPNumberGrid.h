// The grid that doubles of a document are snapped to.
#pragma once

#include <cmath>

namespace karmp {

inline constexpr double Grid = 1e-12;

/// Snaps a number to the grid, half away from zero; one of more steps than a double can count is
/// left as it is. The order of the operations decides on the last bit.
inline double SnapToGrid(double value)
{
    if (value > -Grid && value < Grid)
        return 0.0;
    const double quotient = value / Grid;
    if (std::isinf(quotient))
        return value;
    const double magnitude = std::floor(std::fabs(quotient) + 0.5);
    double sign = 0.0;
    if (quotient > 0)
        sign = 1.0;
    else if (quotient < 0)
        sign = -1.0;
    return magnitude * sign * Grid;
}

} // namespace karmp
