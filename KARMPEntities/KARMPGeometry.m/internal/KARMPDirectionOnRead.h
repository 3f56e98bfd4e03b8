// How a direction that was read is scaled.
#pragma once

#include "KARMathDirection.h"

#include <cmath>

namespace karmp {

/// The direction that a reader makes of three components: one of length 0 becomes (1, 0, 0), one
/// whose squares sum to exactly 1 is taken as it stands, any other is scaled to length 1. Where the
/// sum of the squares overflows or underflows, the components are brought near 1 first.
inline KARMathDirection DirectionOnRead(double x, double y, double z)
{
    KARMathVector read(x, y, z);
    double square = read.SquareNorm();
    if (!std::isnormal(square)) {
        read = read.ScaledToUnity();
        square = read.SquareNorm();
    }
    if (square == 0.0)
        return {};
    if (square == 1.0)
        return read;
    return read * (1.0 / std::sqrt(square));
}

} // namespace karmp
