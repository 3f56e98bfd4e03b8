// What numbers a stored object may be made of.
#pragma once

#include "KARFinite.h"
#include "KARSurface.h"

#include <cmath>
#include <numbers>

namespace kar {

inline bool IsRange(double low, double high)
{
    return IsFinite(low) && IsFinite(high) && low < high;
}

inline bool IsRange(const KARSurLimits& limits)
{
    return IsRange(limits.uLow, limits.uHigh) && IsRange(limits.vLow, limits.vHigh);
}

/// At most one turn, within the rounding of its ends.
inline bool IsWithinOneTurn(double low, double high)
{
    return high - low <= 2.0 * std::numbers::pi * (1.0 + 1e-9);
}

/// Two directions of length 1 at a right angle.
inline bool IsOrthonormal(const KARMathVector& first, const KARMathVector& second)
{
    constexpr double Tolerance = 1e-9;
    return std::abs(first.Norm() - 1.0) <= Tolerance &&
           std::abs(second.Norm() - 1.0) <= Tolerance && std::abs(first.Dot(second)) <= Tolerance;
}

} // namespace kar
