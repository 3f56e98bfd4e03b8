#pragma once

#include "KARMathVector.h"

/// A direction in space, kept as the triple that was given: nothing scales it but an explicit call
/// of Normalize.
class KARMathDirection : public KARMathVector
{
public:
    /// The direction (1, 0, 0).
    constexpr KARMathDirection() : KARMathVector(1.0, 0.0, 0.0) {}
    /// The direction with these components, as given.
    constexpr KARMathDirection(double x, double y, double z) : KARMathVector(x, y, z) {}
    /// The direction of a vector, as given.
    constexpr KARMathDirection(const KARMathVector& vector) : KARMathVector(vector) {}
};
