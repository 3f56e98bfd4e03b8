#include "ViewRods.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace karmp::tool {

namespace {

constexpr std::size_t Many = 200; // the rods of so many points would take long to choose

std::vector<ViewRod> Star(const std::vector<KARMathPoint>& points)
{
    std::vector<ViewRod> rods;
    for (std::size_t i = 1; i < points.size(); ++i)
        rods.emplace_back(points.front(), points[i]);
    return rods;
}

} // namespace

std::vector<KARMathPoint> WithoutDoubles(const std::vector<KARMathPoint>& points, double tolerance)
{
    if (points.size() > Many)
        return points;
    std::vector<KARMathPoint> kept;
    for (const KARMathPoint& point : points)
        if (std::none_of(kept.begin(), kept.end(), [&](const KARMathPoint& other) {
                return (point - other).Norm() <= tolerance;
            }))
            kept.push_back(point);
    return kept;
}

// A minimum spanning tree: the point that is nearest to the tree joins it next.
std::vector<ViewRod> RodsBetween(const std::vector<KARMathPoint>& points)
{
    if (points.size() > Many)
        return Star(points);
    struct Candidate
    {
        std::size_t point;
        std::size_t nearest; // of those in the tree
        double distance;
    };
    std::vector<Candidate> outside;
    for (std::size_t i = 1; i < points.size(); ++i)
        outside.push_back({i, 0, (points[i] - points.front()).Norm()});
    std::vector<ViewRod> rods;
    while (!outside.empty()) {
        const auto next = std::min_element(
            outside.begin(), outside.end(),
            [](const Candidate& a, const Candidate& b) { return a.distance < b.distance; });
        const std::size_t joined = next->point;
        rods.emplace_back(points[next->nearest], points[joined]);
        outside.erase(next);
        for (Candidate& candidate : outside) {
            const double distance = (points[candidate.point] - points[joined]).Norm();
            if (distance < candidate.distance)
                candidate = {candidate.point, joined, distance};
        }
    }
    return rods;
}

} // namespace karmp::tool
