#pragma once

#include "KARMPItems.h"

#include <string_view>
#include <vector>

namespace karmp::model {

/// The item of what an entity is made of. An element refers back to its parent by no item.
inline constexpr std::wstring_view Elements = L"AggregatedElements";

/// True for a class, by its record or one above it.
bool IsA(const QOBClassInfo& info, std::string_view className);

/// What a single link of an entity refers to, null without a target and for a list.
QOBSharedHandle<KARMPEntity> HeldBy(const ItemInfo& item, const KARMPEntity& entity);
/// What an item refers to.
std::vector<QOBSharedHandle<KARMPEntity>> TargetsOf(const ItemInfo& item,
                                                    const KARMPEntity& entity);

/// True when an item refers to a target; of a list, an index is looked at first.
bool Holds(const ItemInfo& item, const KARMPEntity& entity,
           const QOBSharedHandle<KARMPEntity>& target, int near = 0);

/// Links a target on one side; of a list whose entries have words, which are those of a joint's
/// bodies, the first entry is the parent and the others are children.
KARStatus LinkHalf(const ItemInfo& item, KARMPEntity& entity,
                   const QOBSharedHandle<KARMPEntity>& target);

/// The two halves of a link between entities of two classes, an item of each. A reference that
/// needs no counterpart has a first half alone.
struct LinkPair
{
    const ItemInfo* first;
    const ItemInfo* second;
};
/// The links that an entity of one class can have with one of another: those that both know, then
/// those by which the first refers to the second. Found once and kept.
const std::vector<LinkPair>& PairsBetween(const QOBClassInfo& first, const QOBClassInfo& second);

} // namespace karmp::model
