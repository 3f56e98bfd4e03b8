// What can be read from a model beside its items: numbers behind references, places, motions,
// forces and gaps. A false Ref ends the process with a sentence.
#pragma once

#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KARMPModelResult.h"
#include "KARMathAxis.h"
#include "KARMathPoint.h"
#include "KARMathTransformation.h"
#include "KARMathVector.h"

#include <cstddef>
#include <optional>
#include <string_view>

class KARMPBody;
class KARMPCurve;
class KARMPEntity;
class KARMPGeometry;
class KARMPLinearSpring;
class QOBClassInfo;

namespace karmp::model {

class Model;

/// The number of an item, by its path, or by its name where one item alone has it; of a reference
/// to a value the number of its constant, of several numbers the one at an index from 0.
KARMP_MODEL_API Result<double> NumberOf(const Ref<KARMPEntity>& entity, std::string_view item,
                                        std::size_t index = 0, Where where = Where::current());

/// The number that an attribute of an entity holds, by its class, as KARMPOutput, and by its path
/// with "." between the names.
KARMP_MODEL_API Result<double> NumberAt(const QOBClassInfo& attributes,
                                        const Ref<KARMPEntity>& entity, std::string_view path,
                                        Where where);
template <class A>
Result<double> NumberAt(const Ref<KARMPEntity>& entity, std::string_view path,
                        Where where = Where::current())
{
    return NumberAt(A::ClassInfo(), entity, path, where);
}

/// Where the centre of gravity of a body stands in the world.
KARMP_MODEL_API KARMathPoint CenterOf(const Ref<KARMPBody>& body);
/// The axis system of a geometry in the world; for another geometry than an axis system the axes of
/// its body, at the point as PlaceOf tells it.
KARMP_MODEL_API KARMathAxis FrameOf(const Ref<KARMPGeometry>& geometry);

/// How a body moves: its position, and the rates of its origin and of its rotation along the axes
/// of the world, in m, rad and s.
struct KARMP_MODEL_API Motion
{
    KARMathTransformation position = {};
    KARMathVector velocity = {};
    KARMathVector angularVelocity = {};
    KARMathVector acceleration = {};
    KARMathVector angularAcceleration = {};

    /// Where the origin stands.
    KARMathPoint Origin() const;
    /// The same rotation with a point of the body, told in its axes, as the origin.
    Motion At(const KARMathPoint& point) const;
    /// What has its origin here and turns by itself, with an axis of the world that stays; without
    /// a direction of the axis it does not turn.
    Motion Turning(const KARMathVector& axis, double angle, double rate = 0.0,
                   double acceleration = 0.0) const;
};
/// The motion that a body has.
KARMP_MODEL_API Motion MotionOf(const Ref<KARMPBody>& body);
/// Gives a body a motion, all of it, as a solver does with its results; its loader hears of it. The
/// status is the first one that is no success.
KARMP_MODEL_API KARStatus Move(const Ref<KARMPBody>& body, const Motion& motion);

/// A force along the axes of the world, in N, and a torque, in N m.
struct SpatialForce
{
    KARMathVector force = {};
    KARMathVector torque = {};
};
/// What a body needs from all that acts on it but gravity for the motion that it has, about its
/// centre of gravity. Velocity and acceleration are those of its origin.
KARMP_MODEL_API SpatialForce NeededForce(const Ref<KARMPBody>& body);
/// The force in N with which a spring pushes the two bodies apart where they stand, at rest; no
/// number for a spring that is not held on two geometries.
KARMP_MODEL_API double ForceOf(const Ref<KARMPLinearSpring>& spring);

/// The greatest distance in m between the two sides of a joint that lets its bodies turn, but not
/// shift: what the loops of a mechanism, spatial or planar, miss to be closed.
KARMP_MODEL_API double LoopGap(const Model& model);

/// How near two geometries come.
struct Gap
{
    /// In m, negative when they overlap.
    double distance = 0.0;
    /// From the second one to the first one, of length 1, in the world.
    KARMathVector normal = {};
    /// The points in the world that are nearest, or deepest.
    KARMathPoint onFirst = {};
    KARMathPoint onSecond = {};
};
/// The gap between a point, axis system or sphere and another one or a plane, whose matter is
/// behind its normal, or between a point or circle and a line of a sketch, of which either side
/// counts; nothing for other geometries. Of a sketch the points lie in its plane z = 0.
KARMP_MODEL_API std::optional<Gap> GapBetween(const Ref<KARMPGeometry>& first,
                                              const Ref<KARMPGeometry>& second);

} // namespace karmp::model
