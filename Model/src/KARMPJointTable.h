#pragma once

#include "QOBClassInfo.h"
#include "QOBSharedHandle.h"

#include <cstdint>
#include <span>
#include <string_view>

class KARMPConstraint;
class KARMPJoint;

namespace karmp::model {

/// What a joint's constraint is put on, on one of the two bodies.
enum class Mount : std::uint8_t {
    Frame,   ///< An axis system whose third direction is the axis.
    Point,   ///< A point.
    Line,    ///< A line along the axis.
    Plane,   ///< A plane across the axis.
    Point2D, ///< A point of the plane.
    Given    ///< A geometry that the caller gives, a curve for one.
};

/// How a kind of joint is made.
struct JointKind
{
    const QOBClassInfo& (*joint)();
    /// The constraint that realises it, on a geometry of the parent and one of the child.
    const QOBClassInfo& (*constraint)();
    Mount parent;
    Mount child;
    /// What its variables measure, in order: L a length, A an angle.
    std::string_view freedoms;
};

/// All kinds that are no couplings, the screw included.
std::span<const JointKind> JointKinds();
/// The kind of a class; null when there is none.
const JointKind* FindJointKind(const QOBClassInfo& joint);
/// The constraint that realises a joint, planar or not; null without one.
QOBSharedHandle<KARMPConstraint> FirstConstraintOf(const KARMPJoint& joint);

} // namespace karmp::model
