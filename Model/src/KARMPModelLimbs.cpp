// Bodies that are carried by others.
#include "KARMPJoint.h"
#include "KARMPJointTable.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelPlacing.h"
#include "KARMathLine.h"

#include <cmath>

namespace karmp::model {

Model::Entity Model::AddLimb(const QOBClassInfo& info, std::string_view identifier,
                             std::string_view joint, const Ref<KARMPBody>& parent,
                             const LimbPlace& place, const BodyOptions& options,
                             Ref<KARMPBody>& child, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& made) {
            const JointKind* const kind = FindJointKind(info);
            const auto onParent = FrameAlong(place.at, place.axis);
            const auto onChild = FrameAlong({}, place.axis);
            if (kind == nullptr || kind->freedoms.size() != 1)
                return edit.Fail("a " + info.getName() + " has not one freedom");
            if (!onParent || !onChild || !std::isfinite(place.value))
                return edit.Fail("the axis of \"" + std::string(joint) +
                                 "\" has no direction, or its value is not finite");
            if (!edit.IsThere(parent.Handle(), "parent body"))
                return false;
            const KARMathVector along = onParent->GetThirdDirection();
            const bool isTurned = kind->freedoms == "A";
            const KARMathVector shift = place.at - KARMathPoint();
            const KARMathTransformation onBase =
                PositionOf(parent) *
                KARMathTransformation(isTurned ? shift : shift + place.value * along);
            const auto position =
                isTurned
                    ? onBase * KARMathTransformation::Rotation(KARMathLine({}, along), place.value)
                    : onBase;
            QOBSharedHandle<KARMPBody> body;
            if (!MakeBody(edit, identifier, options.PlacedAt(position), body))
                return false;
            child = Ref(body);
            made = MakeJointAt(edit, info, joint, parent, PositionOf(parent) * *onParent, child,
                               position * *onChild);
            return static_cast<bool>(made);
        });
}

} // namespace karmp::model
