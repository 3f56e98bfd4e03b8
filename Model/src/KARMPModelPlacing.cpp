#include "KARMPModelPlacing.h"

#include "KARMPBody2D.h"
#include "KARMPGeometry2D.h"
#include "KARMPModelCore.h"
#include "KARMPSketch.h"
#include "KARTextConversion.h"

#include <utility>

namespace karmp::model {

namespace {

constexpr std::string_view SketchIdentifier = "Sketch";
constexpr std::string_view FrameIdentifier = "Frame";

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
    return kar::ToUtf8(name) + '.' + std::string(identifier);
}

Edit::Entity MountOn(Edit& edit, const QOBClassInfo& geometry, std::string_view identifier,
                     const Edit::Entity& body)
{
    const auto name = NameOn(edit, body, identifier);
    Edit::Entity mounted = name ? edit.Create(geometry, *name) : Edit::Entity();
    if (!mounted || !edit.Link(mounted, body))
        return {};
    auto* const planar = dynamic_cast<KARMPGeometry2D*>(mounted.get());
    const auto* const planarBody = dynamic_cast<const KARMPBody2D*>(body.get());
    QOBSharedHandle<KARMPSketch> sketch;
    if (planar != nullptr && planarBody != nullptr && !KARFailed(planarBody->GetSketch(sketch)) &&
        !edit.Check(planar->SetSketch(sketch), "the sketch", *planar))
        return {};
    return mounted;
}

QOBSharedHandle<KARMPBody2D> PlanarGroundOf(Edit& edit)
{
    using Body = QOBSharedHandle<KARMPBody2D>;
    Core& core = edit.Model();
    if (auto* const frame = dynamic_cast<KARMPBody2D*>(core.FindByIdentifier(FrameIdentifier)))
        return Body(frame);
    QOBSharedHandle<KARMPBody> ground;
    core.World()->GetGroundBody(ground);
    if (!ground)
        core.World()->GetGlobalBody(ground);
    const auto sketch = edit.Create<KARMPSketch>(SketchIdentifier);
    if (!sketch || !edit.Link(sketch, ground))
        return {};
    Body frame = edit.Create<KARMPBody2D>(FrameIdentifier);
    if (!frame || !edit.Check(frame->SetSketch(sketch), "the sketch", *frame) ||
        !edit.Check(frame->Fix2D(), "fixing", *frame))
        return {};
    return frame;
}

} // namespace karmp::model
