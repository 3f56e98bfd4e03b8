// Evaluation of splines by de Boor's scheme, in homogeneous coordinates.
#pragma once

#include "KARMathPoint.h"

#include <cstddef>
#include <vector>

namespace kar {

/// A pole times its weight, and the weight.
struct WeightedPoint
{
    KARMathVector vector;
    double weight = 0.0;
};

WeightedPoint operator+(const WeightedPoint& a, const WeightedPoint& b);
WeightedPoint operator*(const WeightedPoint& a, double factor);

/// The pole at an index with its weight, which is 1 when there are no weights.
WeightedPoint WeightedPole(const std::vector<KARMathPoint>& poles,
                           const std::vector<double>& weights, std::size_t index);

/// Whether the knots make a basis of this degree with at least one span that is not empty.
bool IsBasis(int degree, const std::vector<double>& knots);

/// Whether the poles are `count` and finite, and the weights none or as many, above 0.
bool ArePoles(std::size_t count, const std::vector<KARMathPoint>& poles,
              const std::vector<double>& weights);

/// A parameter on a basis: the knot span that holds the parameter, and the parameter moved into the
/// range.
struct SplineSpan
{
    std::size_t span = 0;
    double parameter = 0.0;
};

SplineSpan FindSpan(int degree, const std::vector<double>& knots, double parameter);

/// Takes the degree + 1 poles of a span, which are overwritten, and gives the value and the
/// derivative at a parameter.
void DeBoor(int degree, const std::vector<double>& knots, const SplineSpan& found,
            WeightedPoint* poles, WeightedPoint& value, WeightedPoint& derivative);

/// The point that a homogeneous value stands for.
KARMathPoint Project(const WeightedPoint& value);
/// The derivative of that point.
KARMathVector ProjectDerivative(const WeightedPoint& value, const WeightedPoint& derivative);

} // namespace kar
