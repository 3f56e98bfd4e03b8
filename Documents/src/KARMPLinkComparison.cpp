#include "KARMPLinkComparison.h"

#include "KARMPDocumentLinks.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

namespace karmp::documents {

namespace {

using Handle = QOBSharedHandle<KARMPEntity>;
using Handles = std::vector<Handle>;

} // namespace

void LinkComparison::Compare(const WorldGraph::Entity& before, const WorldGraph::Entity& after,
                             std::vector<NotedDifference>& noted)
{
    m_noted = &noted;
    m_holder = KeyOf(0, *before.handle);
    for (const ItemInfo* const item : before.items->Links()) {
        const ItemInfo* const other =
            before.items == after.items ? item : after.items->Find(item->path);
        if (other == nullptr || other->kind != item->kind)
            continue;
        const LinkedEntities oldTargets = TargetsOf(before, *item, 0);
        const LinkedEntities newTargets = TargetsOf(after, *other, 1);
        Difference common;
        common.before = before.handle;
        common.after = after.handle;
        common.item = item->path;
        if (item->kind == ItemKind::Reference)
            CompareReference(common, *item, oldTargets, newTargets);
        else
            CompareReferences(common, *item, oldTargets, newTargets);
    }
}

void LinkComparison::CompareReference(const Difference& common, const ItemInfo& item,
                                      const LinkedEntities& before, const LinkedEntities& after)
{
    if (before.empty() && after.empty())
        return;
    if (after.empty())
        return NoteLink(common, item, before[0], 0);
    if (before.empty())
        return NoteLink(common, item, after[0], 1);
    if (before[0].key == after[0].key)
        return;
    m_relinked.insert({false, m_holder, item.name, before[0].key});
    m_relinked.insert({true, m_holder, item.name, after[0].key});
    Difference difference = common;
    difference.oldValue = before[0].entity;
    difference.newValue = after[0].entity;
    Note(std::move(difference));
}

void LinkComparison::CompareReferences(const Difference& common, const ItemInfo& item,
                                       const LinkedEntities& before, const LinkedEntities& after)
{
    const bool isSame = std::equal(before.begin(), before.end(), after.begin(), after.end(),
                                   [](const LinkedEntity& left, const LinkedEntity& right) {
                                       return left.key == right.key && left.word == right.word;
                                   });
    if (isSame)
        return;
    // What the second list still holds of an entry of the first one.
    std::unordered_multimap<std::uint64_t, const LinkedEntity*> others;
    for (const LinkedEntity& entry : after)
        others.emplace(entry.key, &entry);
    std::vector<std::uint64_t> kept;
    for (const LinkedEntity& entry : before) {
        const auto found = others.find(entry.key);
        if (found == others.end()) {
            NoteLink(common, item, entry, 0);
            continue;
        }
        kept.push_back(entry.key);
        if (found->second->word != entry.word) {
            Difference difference = common;
            difference.item += L'/' + std::wstring(item.entryWord);
            difference.target = entry.entity;
            difference.oldValue = std::wstring(entry.word);
            difference.newValue = std::wstring(found->second->word);
            Note(std::move(difference));
        }
        others.erase(found);
    }
    std::vector<std::uint64_t> order;
    for (const LinkedEntity& entry : after) {
        const auto range = others.equal_range(entry.key);
        const auto found = std::find_if(range.first, range.second,
                                        [&](const auto& other) { return other.second == &entry; });
        if (found != range.second)
            NoteLink(common, item, entry, 1);
        else
            order.push_back(entry.key);
    }
    if (!item.isInOrder || kept == order)
        return;
    const auto handlesOf = [](const LinkedEntities& entries) {
        Handles handles;
        for (const LinkedEntity& entry : entries)
            handles.push_back(entry.entity);
        return handles;
    };
    Difference difference = common;
    difference.kind = DifferenceKind::Reordered;
    difference.oldValue = handlesOf(before);
    difference.newValue = handlesOf(after);
    Note(std::move(difference));
}

void LinkComparison::NoteLink(const Difference& common, const ItemInfo& item,
                              const LinkedEntity& target, std::size_t world)
{
    NotedDifference noted;
    noted.difference = common;
    noted.difference.kind = world == 0 ? DifferenceKind::LinkLost : DifferenceKind::LinkGained;
    noted.difference.target = target.entity;
    noted.link = LinkEnd{world == 1, m_holder, item.name, target.key};
    noted.otherSide = item.otherSide;
    noted.isPreferred = item.kind == ItemKind::Reference || item.isInOrder;
    noted.target = m_graphs[world].NumberOf(target.entity.get());
    noted.world = world;
    (noted.isPreferred ? m_preferred : m_ends).insert(*noted.link);
    m_noted->push_back(std::move(noted));
}

LinkedEntities LinkComparison::TargetsOf(const WorldGraph::Entity& entity, const ItemInfo& item,
                                         std::size_t world) const
{
    LinkedEntities targets;
    const Value data = item.Get(*entity.handle);
    const auto add = [&](const Handle& target) {
        if (target)
            targets.push_back({target, KeyOf(world, *target), {}});
    };
    if (const auto* const target = std::get_if<Handle>(&data))
        add(*target);
    const auto* const list = std::get_if<Handles>(&data);
    if (list == nullptr)
        return targets;
    const auto words =
        item.entryWord.empty() ? std::vector<std::wstring_view>() : item.EntryWords(*entity.handle);
    for (std::size_t i = 0; i < list->size(); ++i) {
        if (!(*list)[i])
            continue;
        add((*list)[i]);
        if (i < words.size())
            targets.back().word = words[i];
    }
    return targets;
}

std::uint64_t LinkComparison::KeyOf(std::size_t world, const KARMPEntity& entity) const
{
    constexpr std::uint64_t ofBefore = 1ULL << 32U;
    constexpr std::uint64_t ofAfter = 2ULL << 32U;
    constexpr std::uint64_t unlisted = 1ULL << 63U;
    const EntityNumber number = m_graphs[world].NumberOf(&entity);
    if (number == NoEntity)
        return unlisted | Mix(ClassItems::Of(entity).Hash(),
                              std::hash<std::wstring>()(entity.getEntityName()));
    if (world == 0)
        return ofBefore | number;
    const EntityNumber partner = m_matching.ofAfter[number];
    return partner != NoEntity ? ofBefore | partner : ofAfter | number;
}

bool LinkComparison::IsToldElsewhere(const NotedDifference& noted) const
{
    if (!noted.link)
        return false;
    const auto sides = OtherSides(noted.otherSide);
    return std::any_of(sides.begin(), sides.end(),
                       [&](std::wstring_view side) { return IsToldBy(side, noted); });
}

// Of two equal ends the smaller one tells of the link. What links an added or removed entity is
// told by that one.
bool LinkComparison::IsToldBy(std::wstring_view otherSide, const NotedDifference& noted) const
{
    const LinkEnd& link = *noted.link;
    const LinkEnd other{link.isGained, link.target, otherSide, link.holder};
    if (m_relinked.count(other) != 0 || (!noted.isPreferred && m_preferred.count(other) != 0))
        return true;
    const std::set<LinkEnd>& equals = noted.isPreferred ? m_preferred : m_ends;
    return (other < link && equals.count(other) != 0) || HoldsLink(otherSide, noted);
}

/// True when the target stands in one world alone and holds the link, too.
bool LinkComparison::HoldsLink(std::wstring_view otherSide, const NotedDifference& noted) const
{
    if (noted.target == NoEntity)
        return false;
    const auto& partners = noted.world == 0 ? m_matching.ofBefore : m_matching.ofAfter;
    if (partners[noted.target] != NoEntity)
        return false;
    const WorldGraph::Entity& target = m_graphs[noted.world].At(noted.target);
    const auto& links = target.items->Links();
    const auto item =
        std::find_if(links.begin(), links.end(), [otherSide](const ItemInfo* candidate) {
            return candidate->name == otherSide;
        });
    if (item == links.end())
        return false;
    const LinkedEntities back = TargetsOf(target, **item, noted.world);
    return std::any_of(back.begin(), back.end(), [&noted](const LinkedEntity& entry) {
        return entry.key == noted.link->holder;
    });
}

} // namespace karmp::documents
