// A walk through a scene graph that does not recurse.
#pragma once

#include "KAR3DBagRep.h"

#include <cstddef>
#include <vector>

/// A node as the walk meets it.
struct KAR3DRepPlace
{
    const KAR3DRep* rep = nullptr;
    /// From the node's own axes to those that the walk's first node is placed in.
    KARMathTransformation transformation;
    /// The node's colour, or that of the nearest bag that has one; null without any.
    const KARColour* colour = nullptr;
};

/// Calls `visit` with the place of a node and of each below it: bags before what they hold,
/// children in their order.
template <class Visit>
void KARForEach3DRep(const KAR3DRep& first, Visit&& visit)
{
    const auto placed = [](const KAR3DRep& rep, const KARMathTransformation& outer,
                           const KARColour* colour) {
        return KAR3DRepPlace{&rep, outer * rep.GetTransformation(),
                             rep.GetColour() ? &*rep.GetColour() : colour};
    };
    std::vector<KAR3DRepPlace> open{placed(first, {}, nullptr)};
    while (!open.empty()) {
        const KAR3DRepPlace place = open.back();
        open.pop_back();
        visit(place);
        if (place.rep->GetKind() != KAR3DRepKind::Bag)
            continue;
        const auto& children = static_cast<const KAR3DBagRep*>(place.rep)->GetChildren();
        for (std::size_t i = children.size(); i-- > 0;)
            open.push_back(placed(*children[i], place.transformation, place.colour));
    }
}
