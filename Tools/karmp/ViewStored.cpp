#include "ViewStored.h"

#include "KARBody.h"
#include "KARCrvLimits.h"
#include "KARCurve.h"
#include "KARLineCurve.h"
#include "KARMPCurve.h"
#include "KARMPCurve2D.h"
#include "KARNurbsCurve.h"
#include "KARPlaneSurface.h"
#include "KARPolylineCurve.h"
#include "KARSurface.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace karmp::tool {

namespace {

void Append(const KARMathPoint& point, ViewDrawing& drawing)
{
    drawing.numbers.insert(drawing.numbers.end(), {point.GetX(), point.GetY(), point.GetZ()});
}

// The parameters at which a curve is drawn from low to high: both ends, what lies between at even
// distances, and the corners of a polyline.
std::vector<double> Parameters(const KARCurve& curve, double low, double high)
{
    constexpr int Arc = 72;
    constexpr int Most = 2000;
    int steps = Arc;
    std::set<double> parameters{low, high};
    if (KARSysDynamicCast<KARLineCurve>(&curve) != nullptr) {
        steps = 1;
    } else if (const KARNurbsCurve* spline = KARSysDynamicCast<KARNurbsCurve>(&curve)) {
        steps =
            static_cast<int>(std::clamp<std::size_t>(16 * spline->GetPoles().size(), Arc, Most));
    } else if (KARSysDynamicCast<KARPolylineCurve>(&curve) != nullptr) {
        steps = 1;
        for (double corner = std::floor(low) + 1.0; corner < high; corner += 1.0)
            parameters.insert(corner);
    }
    for (int step = 1; step < steps; ++step)
        parameters.insert(low + (high - low) * step / steps);
    return {parameters.begin(), parameters.end()};
}

// The part between limits, within the curve's own range.
void DrawSegment(const KARCurve& curve, double low, double high, bool isReversed,
                 ViewDrawing& drawing)
{
    double first = 0.0;
    double last = 0.0;
    curve.GetLimits(first, last);
    if (!(low < high)) {
        low = first;
        high = last;
    }
    std::vector<double> parameters =
        Parameters(curve, std::clamp(low, first, last), std::clamp(high, first, last));
    if (isReversed)
        std::reverse(parameters.begin(), parameters.end());
    for (const double parameter : parameters)
        Append(curve.EvalPoint(parameter), drawing);
}

// A grid of points with two triangles for each mesh.
void DrawGrid(const KARSurface& surface, std::uint32_t steps, ViewDrawing& drawing)
{
    if (KARSysDynamicCast<KARPlaneSurface>(&surface) != nullptr)
        steps = 1;
    const KARSurLimits limits = surface.GetLimits();
    const auto start = static_cast<std::uint32_t>(drawing.numbers.size() / 3);
    for (std::uint32_t i = 0; i <= steps; ++i)
        for (std::uint32_t j = 0; j <= steps; ++j)
            Append(surface.EvalPoint(limits.uLow + (limits.uHigh - limits.uLow) * i / steps,
                                     limits.vLow + (limits.vHigh - limits.vLow) * j / steps),
                   drawing);
    for (std::uint32_t i = 0; i < steps; ++i) {
        for (std::uint32_t j = 0; j < steps; ++j) {
            const std::uint32_t corner = start + i * (steps + 1) + j;
            const std::uint32_t next = corner + steps + 1;
            drawing.triangles.insert(drawing.triangles.end(),
                                     {corner, next, corner + 1, corner + 1, next, next + 1});
        }
    }
}

template <class Curve>
void DrawSegments(const Curve& curve, ViewDrawing& drawing)
{
    drawing.kind = ViewKind::Curve;
    for (int index = 0; index < curve.GetCurveCount(); ++index) {
        KARBaseUnknown* stored = nullptr;
        KARMPCurveOrientation::Enum orientation = {};
        void* limits = nullptr;
        curve.GetCurve(index, stored, orientation, limits);
        const KARCurve* const segment = KARSysDynamicCast<KARCurve>(stored);
        if (segment == nullptr || limits == nullptr)
            continue;
        double low = 0.0;
        double high = 0.0;
        static_cast<const KARCrvLimits*>(limits)->GetExtremities(low, high);
        DrawSegment(*segment, low, high, orientation == KARMPCurveOrientation::Negative, drawing);
    }
}

} // namespace

void DrawStoredCurve(const KARMPCurve& curve, ViewDrawing& drawing)
{
    DrawSegments(curve, drawing);
}

void DrawStoredCurve(const KARMPCurve2D& curve, ViewDrawing& drawing)
{
    DrawSegments(curve, drawing);
}

void DrawStoredSurface(const KARBaseUnknown* stored, ViewDrawing& drawing)
{
    drawing.kind = ViewKind::Mesh;
    if (const auto* const sheet = KARSysDynamicCast<KARSurface>(stored))
        DrawGrid(*sheet, 32, drawing);
    else if (const auto* const body = KARSysDynamicCast<KARBody>(stored))
        for (const KARBodyFace& face : body->GetFaces())
            DrawGrid(*face.surface, body->GetFaces().size() > 20 ? 8 : 24, drawing);
}

} // namespace karmp::tool
