// How joints, spatial and planar, write and read their bodies and take themselves out of what they
// link.
#pragma once

#include "KARMPBodyLinkList.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPEntity.h"

#include <string_view>

namespace karmp {

/// Writes the linked bodies with their orientations, nothing when there are none.
template <class Body>
void WriteLinkedBodies(ElementWriter& element, std::wstring_view container, std::wstring_view item,
                       const KARMPBodyLinkList<Body>& bodies)
{
    if (bodies.Count() == 0)
        return;
    ElementWriter list = element.Child(container);
    for (int index = 0; list && index < bodies.Count(); ++index) {
        ElementWriter entry = list.Child(item);
        if (!entry)
            continue;
        QOBSharedHandle<Body> body;
        KARMPBodyOrientation::Enum orientation{};
        bodies.Get(index, body, orientation);
        // The name stands here also where references are written without names.
        constexpr bool withName = true;
        entry.ReferenceAttributes(body.get(), withName);
        if (AtLeast(element.Version(), R2017_1))
            entry.Attribute(L"bodyOrientation", KARMPEnumText(orientation));
    }
}

/// Reads linked bodies and passes each on to `link` with its orientation. A failure of `link` is
/// reported; so is a missing orientation, whose body is not linked.
template <class Body, class Link>
void ReadLinkedBodies(ElementReader& element, ItemName container, ItemName item,
                      const KARMPEntityTable& entities, Link link)
{
    element.Child(container, Absent::Keep)
        .Each(
            item,
            [&](ElementReader entry) {
                const auto target = entry.template Target<KARMPEntity>(entities);
                if (!target)
                    return;
                auto orientation = KARMPBodyOrientation::Out;
                if (AtLeast(element.Version(), R2017_1)) {
                    ReadText text;
                    if (!entry.Attribute(L"bodyOrientation", text, Absent::ReportAndKeep))
                        return;
                    orientation = KARMPEnumValue<KARMPBodyOrientation::Enum>(text.View());
                }
                ElementReader::Set(link(HandleAs<Body>(target), orientation));
            });
}

/// Calls RemoveJoint of each entry in order, up to the first failure. The result is the status of
/// the last call, `before` without any; an empty entry is a failed check and a failure.
template <class T, class Joint>
KARStatus RemoveFromAll(const KARMPLinkList<T>& list, const QOBSharedHandle<Joint>& joint,
                        KARStatus before)
{
    KARStatus status = before;
    for (int index = 0; index < list.Count() && !KARFailed(status); ++index) {
        const QOBSharedHandle<T> entry = list.At(index);
        status = KARMPVerify(static_cast<bool>(entry)) ? entry->RemoveJoint(joint) : KARFailure;
    }
    return status;
}

} // namespace karmp
