// What calls of a model take beside names: settings, and how bodies stand and weigh.
#pragma once

#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KARMath2x2Matrix.h"
#include "KARMath3x3Matrix.h"
#include "KARMathAxis.h"
#include "KARMathPoint.h"
#include "KARMathPoint2D.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"
#include "KARMathVector.h"

#include <optional>

class KARMPBody;
class KARMPBody2D;
class KARMPGeometry;
class KARMPPoint2D;
class KARMPVariable;

namespace karmp::model {

/// The settings of a model. The length unit of a new one is the metre.
struct ModelOptions
{
    /// In m/s2, along the axes of the world.
    KARMathVector gravity{};
    /// In m.
    double linearTolerance = 1e-6;
    /// In rad.
    double angularTolerance = 1e-9;
};

/// How a body stands in the world, and its mass. What is not given stays as in a new body: at the
/// origin, along the axes of the world, without mass.
struct BodyOptions
{
    /// In kg.
    double mass = 0.0;
    /// The body's origin in the world.
    std::optional<KARMathPoint> at = {};
    /// A point of the world at which the first axis looks; the third one stays as near to the
    /// world's as it can.
    std::optional<KARMathPoint> towards = {};
    /// The position as a whole, in place of `at` and `towards`; its matrix is a rotation.
    std::optional<KARMathTransformation> position = {};
    /// In body axes.
    std::optional<KARMathPoint> centerOfGravity = {};
    /// About the centre of gravity, in body axes, in kg m2.
    std::optional<KARMath3x3Matrix> inertia = {};
    bool isFixed = false;

    /// The same at a position.
    BodyOptions PlacedAt(const KARMathTransformation& place) const
    {
        BodyOptions placed = *this;
        placed.position = place;
        return placed;
    }
    /// The same with its origin at a point of the world, its first axis looking at another one.
    BodyOptions PlacedAt(const KARMathPoint& origin,
                         const std::optional<KARMathPoint>& target = {}) const
    {
        BodyOptions placed = *this;
        placed.position.reset();
        placed.at = origin;
        placed.towards = target;
        return placed;
    }
};

/// The same for a body in a plane.
struct PlanarBodyOptions
{
    double mass = 0.0;
    std::optional<KARMathPoint2D> at = {};
    std::optional<KARMathPoint2D> towards = {};
    std::optional<KARMathTransformation2D> position = {};
    std::optional<KARMathPoint2D> centerOfGravity = {};
    std::optional<KARMath2x2Matrix> inertia = {};
    bool isFixed = false;

    /// The same at a position.
    PlanarBodyOptions PlacedAt(const KARMathTransformation2D& place) const
    {
        PlanarBodyOptions placed = *this;
        placed.position = place;
        return placed;
    }
};

/// A round rod from one point of the world to another: its origin is at the first, its first axis
/// looks at the second. In kg and m; without a radius it has no inertia about its axis.
KARMP_MODEL_API BodyOptions Rod(double mass, const KARMathPoint& from, const KARMathPoint& to,
                                double radius = 0.0);
/// A box along the body's axes with its three edges, a cylinder along the body's third axis, and a
/// ball, each with its centre in body axes. In kg and m.
KARMP_MODEL_API BodyOptions Box(double mass, const KARMathVector& edges,
                                const KARMathPoint& center = {});
KARMP_MODEL_API BodyOptions Cylinder(double mass, double radius, double length,
                                     const KARMathPoint& center = {});
KARMP_MODEL_API BodyOptions Ball(double mass, double radius, const KARMathPoint& center = {});
/// A flat body across the body's third axis by its moment of inertia about that axis, through its
/// centre; about the axes in its plane it has the half, as one without a preferred direction. In
/// kg, kg m2 and m.
KARMP_MODEL_API BodyOptions Plate(double mass, double inertia, const KARMathPoint& center = {});
KARMP_MODEL_API PlanarBodyOptions Plate(double mass, double inertia, const KARMathPoint2D& center);
/// A body that is made of two, given in the same axes; it is placed as the first.
KARMP_MODEL_API BodyOptions Together(const BodyOptions& first, const BodyOptions& second);
/// A slender rod in the plane.
KARMP_MODEL_API PlanarBodyOptions Rod(double mass, const KARMathPoint2D& from,
                                      const KARMathPoint2D& to);

/// The point of the plane z = 0 in space.
KARMP_MODEL_API KARMathPoint InSpace(const KARMathPoint2D& point);

/// The point of the plane z = 0 at given distances from two others, on the left of the way from the
/// first to the second; nothing when the distances do not meet. It closes a loop of two rods.
KARMP_MODEL_API std::optional<KARMathPoint> MeetingPoint(const KARMathPoint& from, double distance,
                                                         const KARMathPoint& to,
                                                         double otherDistance);

/// The axis system at a point whose third direction is an axis; nothing for an axis without length.
/// Along an axis of the world all directions are the world's, exchanged in a circle.
KARMP_MODEL_API std::optional<KARMathAxis> FrameAlong(const KARMathPoint& origin,
                                                      const KARMathVector& axis = {0.0, 0.0, 1.0});

/// Where a body stands in the world, or in its plane.
KARMP_MODEL_API KARMathTransformation PositionOf(const Ref<KARMPBody>& body);
KARMP_MODEL_API KARMathTransformation2D PositionOf(const Ref<KARMPBody2D>& body);

/// Where a point, or the origin of an axis system, stands in the world, or in its plane; the origin
/// of its body for another geometry.
KARMP_MODEL_API KARMathPoint PlaceOf(const Ref<KARMPGeometry>& geometry);
KARMP_MODEL_API KARMathPoint2D PlaceOf(const Ref<KARMPPoint2D>& point);

/// How a motor drives its variable, and the most that it can: in the unit of the variable, its
/// derivatives by the second, and N or N m, for a variable that has a quantity. What is not given
/// stays unset.
struct MotorOptions
{
    std::optional<double> position = {};
    std::optional<double> velocity = {};
    std::optional<double> acceleration = {};
    std::optional<double> maximum = {};
};

/// Where a body stands on another one that carries it: with its origin at a point and its axes
/// along those of the other body, from which it is turned about an axis by an angle in rad, or
/// shifted along it by a length in m. Point and axis are told in the axes of the other body.
struct LimbPlace
{
    KARMathPoint at = {};
    KARMathVector axis = {0.0, 0.0, 1.0};
    double value = 0.0;
};

/// A body with the joint that carries it.
template <class J>
struct Limb
{
    Ref<KARMPBody> body;
    Ref<J> joint;
};

/// What a linear spring and its damper resist with. Its length at rest is that at which it stands,
/// unless another one is given, and as much more as a load asks for, which it then carries.
struct SpringOptions
{
    /// In N/m.
    double stiffness = 0.0;
    /// In N s/m.
    double damping = 0.0;
    /// In m.
    std::optional<double> restLength = {};
    /// In N.
    double load = 0.0;
};

/// A term of a coupling's equation.
struct Term
{
    Ref<KARMPVariable> variable;
    double coefficient = 1.0;
};

} // namespace karmp::model
