#include "KARMPModelOptions.h"

#include "KARMPBody2D.h"

#include <cmath>

namespace karmp::model {

namespace {

KARMath3x3Matrix Diagonal(double xx, double yy, double zz)
{
    return {{xx, 0.0, 0.0}, {0.0, yy, 0.0}, {0.0, 0.0, zz}};
}

// What a body's inertia becomes about a point that stands off its centre.
KARMath3x3Matrix About(const BodyOptions& body, const KARMathVector& arm)
{
    const double square = arm.SquareNorm();
    const KARMath3x3Matrix product(arm.GetX() * arm, arm.GetY() * arm, arm.GetZ() * arm);
    return body.inertia.value_or(Diagonal(0.0, 0.0, 0.0)) +
           body.mass * (Diagonal(square, square, square) - product);
}

} // namespace

BodyOptions Rod(double mass, const KARMathPoint& from, const KARMathPoint& to, double radius)
{
    const double length = (to - from).Norm();
    const double along = mass * radius * radius / 2.0;
    const double across = mass * length * length / 12.0 + along / 2.0;
    return {.mass = mass,
            .at = from,
            .towards = to,
            .centerOfGravity = KARMathPoint(length / 2.0, 0.0, 0.0),
            .inertia = KARMath3x3Matrix({along, 0.0, 0.0}, {0.0, across, 0.0}, {0.0, 0.0, across})};
}

PlanarBodyOptions Rod(double mass, const KARMathPoint2D& from, const KARMathPoint2D& to)
{
    const double length = (to - from).Norm();
    return {.mass = mass,
            .at = from,
            .towards = to,
            .centerOfGravity = KARMathPoint2D(length / 2.0, 0.0),
            .inertia = KARMath2x2Matrix({0.0, 0.0}, {0.0, mass * length * length / 12.0})};
}

BodyOptions Box(double mass, const KARMathVector& edges, const KARMathPoint& center)
{
    const double xx = edges.GetX() * edges.GetX();
    const double yy = edges.GetY() * edges.GetY();
    const double zz = edges.GetZ() * edges.GetZ();
    return {.mass = mass,
            .centerOfGravity = center,
            .inertia = mass / 12.0 * Diagonal(yy + zz, zz + xx, xx + yy)};
}

BodyOptions Cylinder(double mass, double radius, double length, const KARMathPoint& center)
{
    const double across = mass * (3.0 * radius * radius + length * length) / 12.0;
    return {.mass = mass,
            .centerOfGravity = center,
            .inertia = Diagonal(across, across, mass * radius * radius / 2.0)};
}

BodyOptions Ball(double mass, double radius, const KARMathPoint& center)
{
    const double inertia = 0.4 * mass * radius * radius;
    return {
        .mass = mass, .centerOfGravity = center, .inertia = Diagonal(inertia, inertia, inertia)};
}

BodyOptions Plate(double mass, double inertia, const KARMathPoint& center)
{
    const double half = inertia / 2.0;
    return {.mass = mass, .centerOfGravity = center, .inertia = Diagonal(half, half, inertia)};
}

PlanarBodyOptions Plate(double mass, double inertia, const KARMathPoint2D& center)
{
    const double half = inertia / 2.0;
    return {.mass = mass,
            .centerOfGravity = center,
            .inertia = KARMath2x2Matrix({half, 0.0}, {0.0, half})};
}

KARMathPoint InSpace(const KARMathPoint2D& point)
{
    return {point.GetX(), point.GetY(), 0.0};
}

BodyOptions Together(const BodyOptions& first, const BodyOptions& second)
{
    BodyOptions whole = first;
    whole.mass = first.mass + second.mass;
    const KARMathPoint start = first.centerOfGravity.value_or(KARMathPoint());
    const KARMathPoint end = second.centerOfGravity.value_or(KARMathPoint());
    const double share = whole.mass > 0.0 ? second.mass / whole.mass : 0.0;
    const KARMathPoint center = start + share * (end - start);
    whole.centerOfGravity = center;
    whole.inertia = About(first, start - center) + About(second, end - center);
    return whole;
}

std::optional<KARMathPoint> MeetingPoint(const KARMathPoint& from, double distance,
                                         const KARMathPoint& to, double otherDistance)
{
    const KARMathVector way = to - from;
    const double length = way.Norm();
    const double along =
        (distance * distance - otherDistance * otherDistance + length * length) / (2.0 * length);
    const double square = distance * distance - along * along;
    if (!(length > 0.0) || !(square >= 0.0))
        return {};
    const KARMathVector unit = way * (1.0 / length);
    return from + unit * along + KARMathVector(-unit.GetY(), unit.GetX(), 0.0) * std::sqrt(square);
}

std::optional<KARMathAxis> FrameAlong(const KARMathPoint& origin, const KARMathVector& axis)
{
    KARMathVector third = axis;
    if (!third.Normalize())
        return {};
    const double x = std::abs(third.GetX());
    const double y = std::abs(third.GetY());
    const double z = std::abs(third.GetZ());
    KARMathVector first = x > y && x > z ? KARMathVector(0.0, 1.0, 0.0)
                          : y > z        ? KARMathVector(0.0, 0.0, 1.0)
                                         : KARMathVector(1.0, 0.0, 0.0);
    first = first - third * first.Dot(third);
    first.Normalize();
    return KARMathAxis(origin, first, third.Cross(first), third);
}

KARMathTransformation PositionOf(const Ref<KARMPBody>& body)
{
    KARMathTransformation position;
    body->GetPosition(position);
    return position;
}

KARMathTransformation2D PositionOf(const Ref<KARMPBody2D>& body)
{
    KARMathTransformation2D position;
    body->GetPosition(position);
    return position;
}

} // namespace karmp::model
