#include "KARMPReferrers.h"

#include "QOBClassInfo.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

bool IsLink(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References;
}

using Items = std::vector<const ItemInfo*>;

// The items by which entities of a class may refer to others: links, and records with links. A
// subclass that the factory does not know has the items of its base.
Items FindReferringItems(const QOBClassInfo& info)
{
    std::span<const ItemInfo> all;
    for (const QOBClassInfo* record = &info; record != nullptr && all.empty();
         record = record->getParent())
        all = ItemsOf(*record);
    Items items;
    for (const ItemInfo& item : all)
        if (item.CanGet() &&
            (IsLink(item) || std::any_of(item.fields.begin(), item.fields.end(), IsLink)))
            items.push_back(&item);
    return items;
}

// Found once and kept.
const Items& ReferringItemsOf(const QOBClassInfo& info)
{
    thread_local std::unordered_map<const QOBClassInfo*, Items> found;
    const auto entry = found.find(&info);
    return entry != found.end() ? entry->second
                                : found.emplace(&info, FindReferringItems(info)).first->second;
}

/// Searches for the references to some entities: through all entities of the world, since any of
/// them may have a link that its target does not have.
class Search
{
public:
    Search(const std::vector<Entity>& targets, const EntitySet& set, std::vector<Referrer>& found)
        : m_set(set), m_found(found)
    {
        for (const Entity& target : targets) {
            m_classes.insert(&target->getClassInfo());
            for (const ItemInfo* const item : LinkItemsOf(target->getClassInfo()))
                for (const Entity& other : TargetsOf(*item, *target))
                    m_held.insert({target.get(), item, other.get()});
            Entity parent;
            if (!KARFailed(target->GetParentEntity(parent)) && parent)
                m_held.insert({target.get(), nullptr, parent.get()});
        }
    }

    void AddFrom(const Entity& entity)
    {
        for (const ItemInfo* const item : ItemsThatMayRefer(entity->getClassInfo())) {
            if (item->Count(*entity) == 0)
                continue;
            if (IsLink(*item)) {
                for (const Entity& target : TargetsOf(*item, *entity))
                    AddIfAsked(entity, *item, target);
                continue;
            }
            for (const RecordValues& record : item->GetRecords(*entity))
                for (const Value& value : record)
                    if (const auto* const target = std::get_if<Entity>(&value))
                        AddIfAsked(entity, *item, *target);
        }
    }

private:
    /// A reference; without an item that of an element to its parent.
    struct Held
    {
        const KARMPEntity* entity;
        const ItemInfo* item;
        const KARMPEntity* target;
        bool operator==(const Held&) const = default;
    };
    struct HeldHash
    {
        std::size_t operator()(const Held& held) const
        {
            const std::hash<const void*> hash;
            return (hash(held.entity) * 31 + hash(held.item)) * 31 + hash(held.target);
        }
    };
    // Entities of one class often stand in a row.
    const Items& ItemsThatMayRefer(const QOBClassInfo& info)
    {
        if (&info == m_latest)
            return *m_latestItems;
        const auto [items, isNew] = m_items.try_emplace(&info);
        if (isNew)
            for (const ItemInfo* const item : ReferringItemsOf(info))
                if (MayRefer(*item))
                    items->second.push_back(item);
        m_latest = &info;
        m_latestItems = &items->second;
        return items->second;
    }
    // A record refers by its fields.
    bool MayRefer(const ItemInfo& item)
    {
        if (item.kind == ItemKind::Records)
            return std::any_of(item.fields.begin(), item.fields.end(),
                               [this](const ItemInfo& field) { return MayRefer(field); });
        return IsLink(item) && IsAskedFor(item.target);
    }
    bool IsAskedFor(std::string_view className)
    {
        const auto [asked, isNew] = m_isAskedFor.try_emplace(className);
        if (isNew)
            asked->second =
                std::any_of(m_classes.begin(), m_classes.end(),
                            [className](const auto* info) { return IsA(*info, className); });
        return asked->second;
    }

    void AddIfAsked(const Entity& entity, const ItemInfo& item, const Entity& target)
    {
        if (target && m_set.contains(target.get()) && !m_set.contains(entity.get()))
            m_found.push_back({entity, &item, target, IsReturned(*entity, item, *target)});
    }
    bool IsReturned(const KARMPEntity& entity, const ItemInfo& item,
                    const KARMPEntity& target) const
    {
        if (item.name == Elements)
            return m_held.contains({&target, nullptr, &entity});
        const auto& pairs = PairsBetween(entity.getClassInfo(), target.getClassInfo());
        return std::any_of(pairs.begin(), pairs.end(), [&](const LinkPair& pair) {
            return pair.first == &item && pair.second != nullptr &&
                   m_held.contains({&target, pair.second, &entity});
        });
    }

    const EntitySet& m_set;
    std::vector<Referrer>& m_found;
    std::unordered_set<const QOBClassInfo*> m_classes;
    std::unordered_map<std::string_view, bool> m_isAskedFor; // by class
    std::unordered_set<Held, HeldHash> m_held;               // by the targets
    std::unordered_map<const QOBClassInfo*, Items> m_items;
    const QOBClassInfo* m_latest = nullptr;
    const Items* m_latestItems = nullptr;
};

} // namespace

std::vector<Referrer> FindReferrers(const Core& core, const std::vector<Entity>& targets,
                                    const EntitySet& set)
{
    std::vector<Referrer> found;
    Search search(targets, set, found);
    core.ForEach(
        -1, [&search](const Entity& entity) { search.AddFrom(entity); });
    std::stable_partition(found.begin(), found.end(),
                          [](const Referrer& referrer) { return referrer.isMutual; });
    return found;
}

} // namespace karmp::model
