#include "ViewConics.h"

#include "KARMPCircle.h"
#include "KARMPCircle2D.h"
#include "KARMPCirline.h"
#include "KARMPEllipse.h"
#include "KARMPHyperbola.h"
#include "KARMPParabola.h"
#include "ViewPen.h"

#include <cmath>

namespace karmp::tool {

namespace {

// An ellipse by its plane: half axes along the first direction and across it.
void DrawEllipse(const KARMathPoint& center, KARMathVector first, KARMathVector normal,
                 double major, double minor, ViewDrawing& drawing)
{
    KARMathVector second = normal.Cross(first);
    const bool isPlane = first.Normalize() && second.Normalize() && major > 0.0 && minor > 0.0;
    Pen(drawing, ViewKind::Ellipse)
        .Add(center)
        .Add(first * major)
        .Add(isPlane ? second * minor : KARMathVector(std::nan(""), 0.0, 0.0));
}

/// The centre, the direction of the major axis and the normal of a conic.
struct ConicFrame
{
    template <class Conic>
    explicit ConicFrame(const Conic& geometry)
    {
        geometry.GetCenter(center);
        geometry.GetMajorDirection(first);
        geometry.GetNormal(normal);
        second = normal.Cross(first);
        if (!first.Normalize() || !second.Normalize())
            center.SetX(std::nan(""));
    }

    KARMathPoint At(double x, double y) const { return center + first * x + second * y; }

    KARMathPoint center;
    KARMathDirection first;
    KARMathDirection normal;
    KARMathVector second;
};

// The points at parameters from -range to range.
template <class PointAt>
void DrawBranch(double range, ViewDrawing& drawing, PointAt pointAt)
{
    constexpr int Steps = 24; // to either side
    Pen pen(drawing, ViewKind::Curve);
    for (int step = -Steps; step <= Steps; ++step)
        pen.Add(pointAt(range * step / Steps));
}

} // namespace

void Draw(const KARMPCircle& geometry, ViewDrawing& drawing)
{
    KARMathCircle circle;
    KARMathVector first;
    KARMathVector second;
    geometry.GetCircle(circle);
    circle.GetDirections(first, second);
    const double radius = circle.GetRadius();
    DrawEllipse(circle.GetCenter(), first, circle.GetNormal(), radius, radius, drawing);
}

void Draw(const KARMPCircle2D& geometry, ViewDrawing& drawing)
{
    KARMathPoint2D center;
    double radius = 0.0;
    geometry.GetPoint(center);
    geometry.GetRadius(radius);
    DrawEllipse({center.GetX(), center.GetY(), 0.0}, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, radius,
                radius, drawing);
}

void Draw(const KARMPEllipse& geometry, ViewDrawing& drawing)
{
    const ConicFrame frame(geometry);
    double major = 0.0;
    double minor = 0.0;
    geometry.GetMajorRadius(major);
    geometry.GetMinorRadius(minor);
    DrawEllipse(frame.center, frame.first, frame.normal, major, minor, drawing);
}

void Draw(const KARMPCirline& geometry, ViewDrawing& drawing)
{
    const ConicFrame frame(geometry);
    double curvature = 0.0;
    geometry.GetCurvature(curvature);
    if (curvature == 0.0) {
        Pen(drawing, ViewKind::Line).Add(frame.center).AddDirection(frame.first);
        return;
    }
    const double radius = 1.0 / std::abs(curvature);
    DrawEllipse(frame.center, frame.first, frame.normal, radius, radius, drawing);
}

void Draw(const KARMPHyperbola& geometry, ViewDrawing& drawing)
{
    const ConicFrame frame(geometry);
    double major = 0.0;
    double minor = 0.0;
    geometry.GetMajorRadius(major);
    geometry.GetMinorRadius(minor);
    DrawBranch(1.5, drawing,
               [&](double t) { return frame.At(major * std::cosh(t), minor * std::sinh(t)); });
}

void Draw(const KARMPParabola& geometry, ViewDrawing& drawing)
{
    const ConicFrame frame(geometry);
    double curvature = 0.0;
    geometry.GetCurvature(curvature);
    DrawBranch(2.0 / std::abs(curvature), drawing,
               [&](double y) { return frame.At(0.5 * curvature * y * y, y); });
}

} // namespace karmp::tool
