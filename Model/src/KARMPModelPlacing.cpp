#include "KARMPModelPlacing.h"

#include "KARMPBody2D.h"
#include "KARMPGeometry2D.h"
#include "KARMPModelCore.h"
#include "KARMPModelLinks.h"
#include "KARMPSketch.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <variant>

namespace karmp::model {

namespace {

/// The second one where the first is that of another entity.
using Identifiers = std::array<std::string_view, 2>;
constexpr Identifiers SketchIdentifiers{"Sketch", "Frame.Sketch"};
constexpr Identifiers FrameIdentifiers{"Frame", "Sketch.Frame"};

// The entity of a class with one of the identifiers, null without one.
template <class T>
QOBSharedHandle<T> FindPlanar(Core& core, const Identifiers& identifiers)
{
    for (const std::string_view identifier : identifiers)
        if (auto* const found = dynamic_cast<T*>(core.FindByIdentifier(identifier)))
            return QOBSharedHandle<T>(found);
    return {};
}

template <class T>
QOBSharedHandle<T> MakePlanar(Edit& edit, const Identifiers& identifiers)
{
    const bool isTaken = edit.Model().FindByIdentifier(identifiers[0]) != nullptr;
    return edit.Create<T>(identifiers[isTaken ? 1 : 0]);
}

// The sketch of planar mechanisms, on the ground.
QOBSharedHandle<KARMPSketch> SketchOf(Edit& edit)
{
    Core& core = edit.Model();
    if (auto sketch = FindPlanar<KARMPSketch>(core, SketchIdentifiers))
        return sketch;
    QOBSharedHandle<KARMPBody> ground;
    core.World()->GetGroundBody(ground);
    if (!ground)
        core.World()->GetGlobalBody(ground);
    auto sketch = MakePlanar<KARMPSketch>(edit, SketchIdentifiers);
    return sketch && edit.Link(sketch, ground) ? sketch : QOBSharedHandle<KARMPSketch>();
}

template <class Transformation, class Body>
std::optional<Transformation> InverseOf(Edit& edit, const Body& body)
{
    Transformation position;
    Transformation inverse;
    if (!edit.Check(body.GetPosition(position), "the position", body))
        return {};
    if (!position.ComputeInverse(inverse)) {
        edit.Fail("the position of " + TitleOf(body) + " has no inverse");
        return {};
    }
    return inverse;
}

} // namespace

bool IsPositive(double number)
{
    return number > 0.0 && std::isfinite(number);
}

bool IsFinite(const KARMathVector& vector)
{
    return std::isfinite(vector.GetX()) && std::isfinite(vector.GetY()) &&
           std::isfinite(vector.GetZ());
}

bool IsFinite(const KARMathPoint& point)
{
    return IsFinite(point - KARMathPoint());
}

bool IsFinite(const KARMathPoint2D& point)
{
    return std::isfinite(point.GetX()) && std::isfinite(point.GetY());
}

bool IsFinite(const KARMathAxis& axis)
{
    return IsFinite(axis.GetOrigin()) && IsFinite(axis.GetFirstDirection()) &&
           IsFinite(axis.GetSecondDirection()) && IsFinite(axis.GetThirdDirection());
}

namespace {

constexpr const char* NotFinite = "not finite";

// True for right-handed axes of length 1.
bool AreAxes(const KARMathVector& first, const KARMathVector& second, const KARMathVector& third)
{
    constexpr double tolerance = 1e-6;
    const auto is = [](double number, double wanted) {
        return std::abs(number - wanted) <= tolerance;
    };
    return is(first.Norm(), 1.0) && is(second.Norm(), 1.0) && is(first.Dot(second), 0.0) &&
           is((first.Cross(second) - third).Norm(), 0.0);
}

} // namespace

const char* FaultOf(const KARMathPoint& at)
{
    return IsFinite(at) ? nullptr : NotFinite;
}

const char* FaultOf(const KARMathPoint2D& at)
{
    return IsFinite(at) ? nullptr : NotFinite;
}

const char* FaultOf(const KARMathAxis& at)
{
    if (!IsFinite(at))
        return NotFinite;
    return AreAxes(at.GetFirstDirection(), at.GetSecondDirection(), at.GetThirdDirection())
               ? nullptr
               : "no frame of right-handed axes of length 1";
}

const char* FaultOf(const KARMathTransformation& at)
{
    const KARMath3x3Matrix& axes = at.GetMatrix();
    return FaultOf(KARMathAxis(KARMathPoint() + at.GetVector(), axes.GetFirstColumn(),
                               axes.GetSecondColumn(), axes.GetThirdColumn()));
}

const char* FaultOf(const KARMathTransformation2D& at)
{
    const KARMathVector2D& offset = at.GetVector();
    const KARMathVector2D first = at.GetMatrix().GetFirstColumn();
    const KARMathVector2D second = at.GetMatrix().GetSecondColumn();
    return FaultOf(KARMathAxis({offset.GetX(), offset.GetY(), 0.0},
                               {first.GetX(), first.GetY(), 0.0},
                               {second.GetX(), second.GetY(), 0.0}, {0.0, 0.0, 1.0}));
}

bool IsFinite(const Value& value)
{
    if (const double* const number = std::get_if<double>(&value))
        return std::isfinite(*number);
    if (const auto* const numbers = std::get_if<NumberArray>(&value)) {
        for (std::size_t i = 0; i < numbers->size(); ++i)
            if (!std::isfinite((*numbers)[i]))
                return false;
    }
    const auto areFinite = [](const RecordValues& record) {
        return std::all_of(record.begin(), record.end(),
                           [](const Value& field) { return IsFinite(field); });
    };
    const auto* const records = std::get_if<std::vector<RecordValues>>(&value);
    return records == nullptr || std::all_of(records->begin(), records->end(), areFinite);
}

std::optional<KARMathTransformation> IntoBody(Edit& edit, const KARMPBody& body)
{
    return InverseOf<KARMathTransformation>(edit, body);
}

std::optional<KARMathTransformation2D> IntoBody(Edit& edit, const KARMPBody2D& body)
{
    return InverseOf<KARMathTransformation2D>(edit, body);
}

std::optional<std::string> NameOn(Edit& edit, const Edit::Entity& owner,
                                  std::string_view identifier)
{
    std::wstring name;
    if (!edit.IsThere(owner, "body") ||
        !edit.Check(owner->GetIdentifier(name), "the identifier", *owner))
        return {};
    if (identifier.empty()) {
        edit.Fail("what belongs to " + TitleOf(*owner) + " needs an identifier");
        return {};
    }
    return kar::ToUtf8(name) + '.' + std::string(identifier);
}

Edit::Entity MountOn(Edit& edit, const QOBClassInfo& geometry, std::string_view identifier,
                     const Edit::Entity& body)
{
    if (identifier.empty() || !IsA(geometry, "KARMPGeometry")) {
        edit.Fail(identifier.empty() ? "a " + geometry.getName() + " needs an identifier"
                                     : "a " + geometry.getName() + " is no geometry");
        return {};
    }
    const auto name = NameOn(edit, body, identifier);
    Edit::Entity mounted = name ? edit.Create(geometry, *name) : Edit::Entity();
    if (!mounted || !edit.Link(mounted, body))
        return {};
    auto* const planar = dynamic_cast<KARMPGeometry2D*>(mounted.get());
    const auto* const planarBody = dynamic_cast<const KARMPBody2D*>(body.get());
    if (planar != nullptr && planarBody == nullptr) {
        edit.Fail("a " + geometry.getName() + " lies on a body of the plane");
        return {};
    }
    QOBSharedHandle<KARMPSketch> sketch;
    if (planar != nullptr && planarBody != nullptr && !KARFailed(planarBody->GetSketch(sketch)) &&
        !edit.Check(planar->SetSketch(sketch), "the sketch", *planar))
        return {};
    return mounted;
}

// A frame that lost its sketch gets one.
QOBSharedHandle<KARMPBody2D> PlanarGroundOf(Edit& edit)
{
    auto frame = FindPlanar<KARMPBody2D>(edit.Model(), FrameIdentifiers);
    QOBSharedHandle<KARMPSketch> sketch;
    if (frame && !KARFailed(frame->GetSketch(sketch)) && sketch)
        return frame;
    sketch = SketchOf(edit);
    if (!sketch)
        return {};
    if (frame) {
        const ItemInfo* const item = FindItem(frame->getClassInfo(), L"Sketch");
        const bool isSet = item != nullptr && edit.Set(frame, *item, Edit::Entity(sketch));
        return isSet ? frame : QOBSharedHandle<KARMPBody2D>();
    }
    frame = MakePlanar<KARMPBody2D>(edit, FrameIdentifiers);
    if (!frame || !edit.Check(frame->SetSketch(sketch), "the sketch", *frame) ||
        !edit.Check(frame->Fix2D(), "fixing", *frame))
        return {};
    return frame;
}

} // namespace karmp::model
