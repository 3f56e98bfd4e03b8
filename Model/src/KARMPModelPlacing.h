#pragma once

#include "KARMPModelEdit.h"
#include "KARMPModelOptions.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

class KARMPBody;
class KARMPBody2D;
class KARMPGeometry;
class KARMPSketch;

namespace karmp::model {

/// The identifier of what belongs to an entity, behind that of the entity and a dot; nothing, and a
/// failed edit, when the entity is not there.
std::optional<std::string> NameOn(Edit& edit, const Edit::Entity& owner,
                                  std::string_view identifier);

/// A geometry of a class on a body: named after it, linked to it on both sides, and lying in the
/// body's sketch, if it is planar. Null after a failure.
Edit::Entity MountOn(Edit& edit, const QOBClassInfo& geometry, std::string_view identifier,
                     const Edit::Entity& body);

/// True for numbers that are finite, and for one that is more than 0 as well.
bool IsPositive(double number);
bool IsFinite(const KARMathVector& vector);
bool IsFinite(const KARMathPoint& point);
bool IsFinite(const KARMathPoint2D& point);
bool IsFinite(const KARMathAxis& axis);
/// True for values without a number, too.
bool IsFinite(const Value& value);

/// What coordinates are at which no geometry can be, such as a frame whose axes are not
/// perpendicular; null for others.
const char* FaultOf(const KARMathPoint& at);
const char* FaultOf(const KARMathPoint2D& at);
const char* FaultOf(const KARMathAxis& at);
const char* FaultOf(const KARMathTransformation& at);
const char* FaultOf(const KARMathTransformation2D& at);

/// What is at a point of the world, in body axes; nothing, and a failed edit, when the position of
/// the body has no inverse.
std::optional<KARMathTransformation> IntoBody(Edit& edit, const KARMPBody& body);
std::optional<KARMathTransformation2D> IntoBody(Edit& edit, const KARMPBody2D& body);

/// MountOn with coordinates in the world, which `set` stores in body axes; null after a failure.
template <class Geometry, class Body, class Coordinates, class Set>
QOBSharedHandle<Geometry> MountAt(Edit& edit, std::string_view identifier, const Ref<Body>& body,
                                  const Coordinates& at, Set set)
{
    if (const char* const fault = FaultOf(at)) {
        edit.Fail("the position of \"" + std::string(identifier) + "\" is " + fault);
        return {};
    }
    const auto geometry = QOBSharedHandle<Geometry>::unchecked(
        MountOn(edit, Geometry::ClassInfo(), identifier, body.Handle()));
    const auto inverse = geometry ? IntoBody(edit, *body) : std::nullopt;
    const bool isSet = inverse && edit.Check(std::invoke(set, *geometry, *inverse * at),
                                             "the position", *geometry);
    return isSet ? geometry : QOBSharedHandle<Geometry>();
}

/// Makes a body with what its options say; false after a failure.
bool MakeBody(Edit& edit, std::string_view identifier, const BodyOptions& options,
              QOBSharedHandle<KARMPBody>& body);
/// A joint between a frame of its parent and one of its child, both told in the world, with all
/// that belongs to it; null after a failure.
Edit::Entity MakeJointAt(Edit& edit, const QOBClassInfo& info, std::string_view identifier,
                         const Ref<KARMPBody>& parent, const KARMathAxis& onParent,
                         const Ref<KARMPBody>& child, const KARMathAxis& onChild);

/// The frame of planar mechanisms, made with its sketch on first need; null after a failure.
QOBSharedHandle<KARMPBody2D> PlanarGroundOf(Edit& edit);

} // namespace karmp::model
