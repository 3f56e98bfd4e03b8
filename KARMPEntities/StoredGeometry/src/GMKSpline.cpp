#include "GMKSpline.h"

#include "GMKChecks.h"
#include "KARNurbsCurve.h"

#include <algorithm>

namespace kar {

WeightedPoint operator+(const WeightedPoint& a, const WeightedPoint& b)
{
    return {a.vector + b.vector, a.weight + b.weight};
}

WeightedPoint operator*(const WeightedPoint& a, double factor)
{
    return {a.vector * factor, a.weight * factor};
}

WeightedPoint WeightedPole(const std::vector<KARMathPoint>& poles,
                           const std::vector<double>& weights, std::size_t index)
{
    const double weight = weights.empty() ? 1.0 : weights[index];
    return {(poles[index] - KARMathPoint()) * weight, weight};
}

bool IsBasis(int degree, const std::vector<double>& knots)
{
    if (degree < 1 || degree > KARNurbsCurve::MaximumDegree)
        return false;
    const auto order = static_cast<std::size_t>(degree) + 1;
    if (knots.size() < 2 * order || !AllFinite(knots) ||
        !std::is_sorted(knots.begin(), knots.end()))
        return false;
    // A knot that stands more often than the order would divide 0 by 0.
    for (std::size_t i = 0; i + order < knots.size(); ++i)
        if (!(knots[i] < knots[i + order]))
            return false;
    return knots[order - 1] < knots[knots.size() - order];
}

bool ArePoles(std::size_t count, const std::vector<KARMathPoint>& poles,
              const std::vector<double>& weights)
{
    return poles.size() == count && AllFinite(poles) &&
           (weights.empty() || weights.size() == count) && AllFinite(weights) &&
           std::all_of(
               weights.begin(), weights.end(), [](double w) { return w > 0.0; });
}

SplineSpan FindSpan(int degree, const std::vector<double>& knots, double parameter)
{
    const auto p = static_cast<std::ptrdiff_t>(degree);
    const auto first = knots.begin() + p;
    const auto last = knots.end() - p - 1;
    // Written so that a parameter that is not a number lands at the start.
    const double t = parameter > *first ? std::min(parameter, *last) : *first;
    auto next = std::upper_bound(first, last, t);
    if (next == last) {
        // The high end belongs to the last span that is not empty.
        next = std::lower_bound(first, last, *last);
    }
    return {static_cast<std::size_t>(next - knots.begin() - 1), t};
}

void DeBoor(int degree, const std::vector<double>& knots, const SplineSpan& found,
            WeightedPoint* poles, WeightedPoint& value, WeightedPoint& derivative)
{
    const auto p = static_cast<std::size_t>(degree);
    const std::size_t k = found.span;
    for (std::size_t level = 1; level <= p; ++level) {
        if (level == p) {
            // The two points of the last level but one span the tangent.
            const double scale = degree / (knots[k + 1] - knots[k]);
            derivative = (poles[p] + poles[p - 1] * -1.0) * scale;
        }
        for (std::size_t j = p; j >= level; --j) {
            const double low = knots[k + j - p];
            const double high = knots[k + j + 1 - level];
            const double share = (found.parameter - low) / (high - low);
            poles[j] = poles[j - 1] * (1.0 - share) + poles[j] * share;
        }
    }
    value = poles[p];
}

KARMathPoint Project(const WeightedPoint& value)
{
    return KARMathPoint() + value.vector * (1.0 / value.weight);
}

KARMathVector ProjectDerivative(const WeightedPoint& value, const WeightedPoint& derivative)
{
    return (derivative.vector - (Project(value) - KARMathPoint()) * derivative.weight) *
           (1.0 / value.weight);
}

} // namespace kar
