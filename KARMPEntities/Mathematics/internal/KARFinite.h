// Which numbers geometry may be made of: none that is infinite or not a number.
#pragma once

#include "KARMathPoint.h"
#include "KARMathTransformation.h"
#include "KARMathVector.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace kar {

inline bool IsFinite(double value)
{
    return std::isfinite(value);
}

inline bool IsFinite(const KARMathVector& v)
{
    return std::isfinite(v.GetX()) && std::isfinite(v.GetY()) && std::isfinite(v.GetZ());
}

inline bool IsFinite(const KARMathPoint& p)
{
    return IsFinite(p - KARMathPoint());
}

template <typename T>
bool AllFinite(const std::vector<T>& values)
{
    return std::all_of(
        values.begin(), values.end(), [](const T& v) { return IsFinite(v); });
}

inline bool IsFinite(const KARMathTransformation& transformation)
{
    double coefficients[12];
    transformation.GetCoef(coefficients);
    return std::all_of(std::begin(coefficients), std::end(coefficients),
                       [](double c) { return IsFinite(c); });
}

} // namespace kar
