#include "ViewGeometry.h"

#include "KARMPAxisSystem.h"
#include "KARMPCircle.h"
#include "KARMPCircle2D.h"
#include "KARMPCirline.h"
#include "KARMPCone.h"
#include "KARMPCurve.h"
#include "KARMPCurve2D.h"
#include "KARMPCylicone.h"
#include "KARMPCylinder.h"
#include "KARMPEllipse.h"
#include "KARMPHyperbola.h"
#include "KARMPLine.h"
#include "KARMPLine2D.h"
#include "KARMPParabola.h"
#include "KARMPPlane.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "KARMPSketch.h"
#include "KARMPSphere.h"
#include "KARMPSurface.h"
#include "KARMPTorus.h"
#include "ViewStored.h"

#include <algorithm>
#include <cmath>

namespace karmp::tool {

namespace {

constexpr double Largest = 1e15; // squares and their sums stay within single precision

/// Collects the numbers of a drawing.
class Pen
{
public:
    Pen(ViewDrawing& drawing, ViewKind kind) : m_drawing(drawing) { m_drawing.kind = kind; }

    Pen& Add(double number)
    {
        m_drawing.numbers.push_back(number);
        return *this;
    }
    template <class Triple>
    Pen& Add(const Triple& triple)
    {
        return Add(triple.GetX()).Add(triple.GetY()).Add(triple.GetZ());
    }
    // A null direction makes the drawing invalid.
    Pen& AddDirection(KARMathVector direction)
    {
        return direction.Normalize() ? Add(direction) : Add(std::nan(""));
    }
    // So does a length that is none.
    Pen& AddLength(double length) { return Add(length > 0.0 ? length : std::nan("")); }

private:
    ViewDrawing& m_drawing;
};

void Draw(const KARMPPoint& geometry, ViewDrawing& drawing)
{
    KARMathPoint point;
    geometry.GetPoint(point);
    Pen(drawing, ViewKind::Point).Add(point);
}

void Draw(const KARMPLine& geometry, ViewDrawing& drawing)
{
    KARMathLine line;
    geometry.GetLine(line);
    Pen(drawing, ViewKind::Line).Add(line.GetOrigin()).AddDirection(line.GetDirection());
}

void Draw(const KARMPAxisSystem& geometry, ViewDrawing& drawing)
{
    KARMathAxis axis;
    geometry.GetAxisSystem(axis);
    Pen(drawing, ViewKind::Axes)
        .Add(axis.GetOrigin())
        .AddDirection(axis.GetFirstDirection())
        .AddDirection(axis.GetSecondDirection())
        .AddDirection(axis.GetThirdDirection());
}

void Draw(const KARMPPlane& geometry, ViewDrawing& drawing)
{
    KARMathPlane plane;
    geometry.GetPlane(plane);
    Pen(drawing, ViewKind::Plane).Add(plane.GetOrigin()).AddDirection(plane.GetNormal());
}

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

// The points at parameters from -range to range.
template <class PointAt>
void DrawBranch(double range, ViewDrawing& drawing, PointAt pointAt)
{
    constexpr int Steps = 24; // to either side
    Pen pen(drawing, ViewKind::Curve);
    for (int step = -Steps; step <= Steps; ++step)
        pen.Add(pointAt(range * step / Steps));
}

// One branch, that on the side of the major direction.
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

// Around the vertex, as far as the sides have turned by some 60 degrees.
void Draw(const KARMPParabola& geometry, ViewDrawing& drawing)
{
    const ConicFrame frame(geometry);
    double curvature = 0.0;
    geometry.GetCurvature(curvature);
    DrawBranch(2.0 / std::abs(curvature), drawing,
               [&](double y) { return frame.At(0.5 * curvature * y * y, y); });
}

void Draw(const KARMPSphere& geometry, ViewDrawing& drawing)
{
    KARMathPoint center;
    double radius = 0.0;
    geometry.GetCenter(center);
    geometry.GetRadius(radius);
    Pen(drawing, ViewKind::Sphere).Add(center).AddLength(radius);
}

void DrawCylinder(const KARMathPoint& origin, const KARMathVector& axis, double radius,
                  ViewDrawing& drawing)
{
    Pen(drawing, ViewKind::Cylinder).Add(origin).AddDirection(axis).AddLength(radius);
}

void Draw(const KARMPCylinder& geometry, ViewDrawing& drawing)
{
    KARMathPoint origin;
    KARMathDirection axis;
    double radius = 0.0;
    geometry.GetOrigin(origin);
    geometry.GetAxis(axis);
    geometry.GetRadius(radius);
    DrawCylinder(origin, axis, radius, drawing);
}

void DrawCone(const KARMathPoint& apex, const KARMathVector& axis, double angle,
              ViewDrawing& drawing)
{
    const bool isCone = std::abs(angle) < 1.57;
    Pen(drawing, ViewKind::Cone)
        .Add(apex)
        .AddDirection(axis)
        .AddLength(isCone ? std::abs(angle) : 0.0);
}

void Draw(const KARMPCone& geometry, ViewDrawing& drawing)
{
    KARMathPoint origin;
    KARMathDirection axis;
    double angle = 0.0;
    geometry.GetOrigin(origin);
    geometry.GetAxis(axis);
    geometry.GetAngle(angle);
    DrawCone(origin, axis, angle, drawing);
}

// Its radius at the origin tells how far behind it the apex is.
void Draw(const KARMPCylicone& geometry, ViewDrawing& drawing)
{
    KARMathPoint origin;
    KARMathDirection axis;
    double angle = 0.0;
    double radius = 0.0;
    geometry.GetOrigin(origin);
    geometry.GetAxis(axis);
    geometry.GetAngle(angle);
    geometry.GetRadius(radius);
    KARMathVector unit = axis;
    unit.Normalize();
    if (angle == 0.0)
        DrawCylinder(origin, axis, radius, drawing);
    else
        DrawCone(origin + unit * (-radius / std::tan(angle)), unit * (angle < 0.0 ? -1.0 : 1.0),
                 angle, drawing);
}

void Draw(const KARMPTorus& geometry, ViewDrawing& drawing)
{
    KARMathPoint center;
    KARMathDirection normal;
    double major = 0.0;
    double minor = 0.0;
    geometry.GetCenter(center);
    geometry.GetNormal(normal);
    geometry.GetMajorRadius(major);
    geometry.GetMinorRadius(minor);
    Pen(drawing, ViewKind::Torus)
        .Add(center)
        .AddDirection(normal)
        .AddLength(major)
        .AddLength(minor);
}

void Draw(const KARMPCurve& geometry, ViewDrawing& drawing)
{
    DrawStoredCurve(geometry, drawing);
}

void Draw(const KARMPSurface& geometry, ViewDrawing& drawing)
{
    KARBaseUnknown* stored = nullptr;
    geometry.GetSurface(stored);
    DrawStoredSurface(stored, drawing);
}

// The plane of a planar mechanism.
void Draw(const KARMPSketch& geometry, ViewDrawing& drawing)
{
    KARMathPlane plane;
    geometry.GetPlane(plane);
    Pen(drawing, ViewKind::Plane).Add(plane.GetOrigin()).AddDirection(plane.GetNormal());
}

KARMathPoint InSpace(const KARMathPoint2D& point)
{
    return {point.GetX(), point.GetY(), 0.0};
}

void Draw(const KARMPPoint2D& geometry, ViewDrawing& drawing)
{
    KARMathPoint2D point;
    geometry.GetPoint(point);
    Pen(drawing, ViewKind::Point).Add(InSpace(point));
}

void Draw(const KARMPLine2D& geometry, ViewDrawing& drawing)
{
    KARMathLine2D line;
    geometry.GetLine(line);
    const auto& direction = line.GetDirection();
    Pen(drawing, ViewKind::Line)
        .Add(InSpace(line.GetOrigin()))
        .AddDirection({direction.GetX(), direction.GetY(), 0.0});
}

void Draw(const KARMPCircle2D& geometry, ViewDrawing& drawing)
{
    KARMathPoint2D center;
    double radius = 0.0;
    geometry.GetPoint(center);
    geometry.GetRadius(radius);
    DrawEllipse(InSpace(center), {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, radius, radius, drawing);
}

void Draw(const KARMPCurve2D& geometry, ViewDrawing& drawing)
{
    DrawStoredCurve(geometry, drawing);
}

template <class... Kinds>
void DrawAsOneOf(const KARMPGeometry& geometry, ViewDrawing& drawing)
{
    const auto draws = [&]<class Kind>(const Kind* kind) {
        if (kind != nullptr)
            Draw(*kind, drawing);
        return kind != nullptr;
    };
    (draws(dynamic_cast<const Kinds*>(&geometry)) || ...);
}

KARMathPoint PointAt(const ViewDrawing& drawing, std::size_t first)
{
    const auto& n = drawing.numbers;
    return {n[first], n[first + 1], n[first + 2]};
}

KARMathVector VectorAt(const ViewDrawing& drawing, std::size_t first)
{
    return PointAt(drawing, first) - KARMathPoint();
}

} // namespace

bool IsDrawable(double number)
{
    return std::abs(number) <= Largest; // false for what is no number
}

bool IsDrawable(const KARMathPoint& point)
{
    return IsDrawable(point.GetX()) && IsDrawable(point.GetY()) && IsDrawable(point.GetZ());
}

bool IsDrawable(const KARMathTransformation& position)
{
    double coefficients[12];
    position.GetCoef(coefficients);
    return std::all_of(std::begin(coefficients), std::end(coefficients),
                       [](double coefficient) { return IsDrawable(coefficient); });
}

std::optional<ViewDrawing> DrawGeometry(const KARMPGeometry& geometry)
{
    ViewDrawing drawing;
    DrawAsOneOf<KARMPAxisSystem, KARMPPoint, KARMPLine, KARMPPlane, KARMPCircle, KARMPEllipse,
                KARMPCirline, KARMPHyperbola, KARMPParabola, KARMPSphere, KARMPCylinder, KARMPCone,
                KARMPCylicone, KARMPTorus, KARMPCurve, KARMPSurface, KARMPSketch, KARMPPoint2D,
                KARMPLine2D, KARMPCircle2D, KARMPCurve2D>(geometry, drawing);
    const bool isDrawable = std::all_of(drawing.numbers.begin(), drawing.numbers.end(),
                                        [](double number) { return IsDrawable(number); });
    if (drawing.numbers.empty() || !isDrawable)
        return std::nullopt;
    return drawing;
}

bool HasDirection(const ViewDrawing& drawing)
{
    switch (drawing.kind) {
    case ViewKind::Point:
    case ViewKind::Sphere:
    case ViewKind::Curve:
    case ViewKind::Mesh:
        return false;
    default:
        return true;
    }
}

KARMathAxis FrameOf(const ViewDrawing& drawing)
{
    KARMathAxis frame;
    frame.SetOrigin(PointAt(drawing, 0));
    if (drawing.kind == ViewKind::Axes) {
        frame.SetDirections(VectorAt(drawing, 3), VectorAt(drawing, 6), VectorAt(drawing, 9));
    } else if (HasDirection(drawing)) {
        KARMathVector third = VectorAt(drawing, 3);
        if (drawing.kind == ViewKind::Ellipse)
            third = third.Cross(VectorAt(drawing, 6));
        third.Normalize();
        KARMathVector first;
        KARMathVector second;
        KARMathPlane(frame.GetOrigin(), third).GetDirections(first, second);
        frame.SetDirections(first, second, third);
    }
    return frame;
}

} // namespace karmp::tool
