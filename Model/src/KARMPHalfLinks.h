#pragma once

#include "KARMPEntity.h"

#include <span>
#include <string_view>
#include <vector>

namespace karmp::model {

/// One half of a two-sided link: how an entity of a class is linked to a target, and how the target
/// is taken out again.
struct HalfLink
{
    using Entity = QOBSharedHandle<KARMPEntity>;

    /// The class whose content list has the item, and the item's name.
    std::string_view owner;
    std::wstring_view item;
    /// Statuses are those of the class: 1 where nothing was to do. `word` is the orientation of a
    /// joint's body, -1 for the next one in order; others ignore it.
    KARStatus (*link)(KARMPEntity& owner, const Entity& target, int word);
    KARStatus (*unlink)(KARMPEntity& owner, const Entity& target);
    /// Of a single link what is linked, null without one; null for a list.
    Entity (*held)(const KARMPEntity& owner) = nullptr;
    /// The word of an entry, -1 for a target that is not linked; null for lists without words.
    int (*wordOf)(const KARMPEntity& owner, const Entity& target) = nullptr;
    /// A class may refuse to let the target go.
    bool mayRefuse = false;

    /// False for a single link to another entity.
    bool IsFreeFor(const KARMPEntity& entity, const Entity& target) const
    {
        if (held == nullptr)
            return true;
        const Entity other = held(entity);
        return !other || other == target;
    }
};

/// All halves.
std::span<const HalfLink> HalfLinks();

/// The two halves of a link between entities of two classes.
struct LinkPair
{
    const HalfLink* first;
    const HalfLink* second;
};
/// The links that entities of two classes can have, by the items of their content lists: an item
/// whose other side is one of the other class, or the reverse. Found once and kept.
const std::vector<LinkPair>& PairsBetween(const QOBClassInfo& first, const QOBClassInfo& second);

/// The half of an item of a class, by the content list that declares it; null for an item that is
/// no half of a link.
const HalfLink* HalfOf(const QOBClassInfo& info, std::wstring_view item);

} // namespace karmp::model
