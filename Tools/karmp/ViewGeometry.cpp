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
#include "ViewConics.h"
#include "ViewPen.h"
#include "ViewStored.h"

#include <algorithm>
#include <cmath>

namespace karmp::tool {

namespace {

constexpr double Largest = 1e15; // squares and their sums stay within single precision

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
