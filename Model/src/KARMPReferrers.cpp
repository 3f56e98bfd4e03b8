#include "KARMPReferrers.h"

#include "KARMPGenericFactory.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

/// A class whose entities refer to others that need not refer back.
struct Holder
{
    std::size_t family;
    /// References, and records that hold some.
    std::vector<const ItemInfo*> items;
};
using Holders = std::unordered_map<const QOBClassInfo*, Holder>;

// True for links of which no class has the other half, and for records with references. Of the
// elements of an entity each knows its parent.
bool IsOneWay(const ItemInfo& item)
{
    const auto isLink = [](const ItemInfo& link) {
        return link.kind == ItemKind::Reference || link.kind == ItemKind::References;
    };
    if (item.kind == ItemKind::Records)
        return item.CanGet() && std::any_of(item.fields.begin(), item.fields.end(), isLink);
    return isLink(item) && item.CanGet() && item.otherSide.empty() && item.name != Elements;
}

Holders MakeHolders()
{
    Holders holders;
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        Entity sample;
        if (KARFailed(KARMPFactory::Create(name, sample)) || !sample)
            continue;
        const FamilyOperations* const family = FamilyOf(*sample);
        std::vector<const ItemInfo*> items;
        for (const ItemInfo& item : ItemsOf(sample->getClassInfo()))
            if (IsOneWay(item))
                items.push_back(&item);
        if (family != nullptr && !items.empty())
            holders[&sample->getClassInfo()] = {
                static_cast<std::size_t>(family - AllFamilies().data()), std::move(items)};
    }
    return holders;
}

const Holders& AllHolders()
{
    static const Holders holders = MakeHolders();
    return holders;
}

// A subclass that the factory does not know has the items of its base.
const Holder* HolderOf(const QOBClassInfo& info)
{
    for (const QOBClassInfo* record = &info; record != nullptr; record = record->getParent())
        if (const auto found = AllHolders().find(record); found != AllHolders().end())
            return &found->second;
    return nullptr;
}

/// Searches for the references to some entities.
class Search
{
public:
    Search(const Core& core, const EntitySet& set, std::vector<Referrer>& found)
        : m_core(core), m_set(set), m_found(found)
    {}

    // The entities that the target refers to, and that should refer back.
    void AddMutual(const Entity& target)
    {
        const QOBClassInfo& info = target->getClassInfo();
        for (const ItemInfo* const item : LinkItemsOf(info))
            for (const Entity& other : TargetsOf(*item, *target))
                if (other && !m_set.contains(other.get()))
                    for (const LinkPair& pair : PairsBetween(info, other->getClassInfo()))
                        if (pair.first == item && pair.second != nullptr)
                            Add(other, *pair.second, target);
        Entity parent;
        if (!KARFailed(target->GetParentEntity(parent)) && parent && !m_set.contains(parent.get()))
            for (const ItemInfo* const item : LinkItemsOf(parent->getClassInfo()))
                if (item->name == Elements)
                    Add(parent, *item, target);
    }

    void AddOthers(const std::vector<Entity>& targets)
    {
        for (const Entity& target : targets)
            m_classes.insert(&target->getClassInfo());
        std::set<std::size_t> families;
        for (const auto& [info, holder] : AllHolders())
            for (const ItemInfo* const item : holder.items)
                if (MayRefer(*item))
                    families.insert(holder.family);
        for (const std::size_t family : families)
            m_core.ForEach(static_cast<int>(family), [this](const Entity& entity) {
                const Holder* const holder = HolderOf(entity->getClassInfo());
                if (holder != nullptr && !m_set.contains(entity.get()))
                    AddFrom(entity, *holder);
            });
    }

private:
    bool MayRefer(const ItemInfo& item) const
    {
        if (item.kind == ItemKind::Records)
            return std::any_of(
                item.fields.begin(), item.fields.end(),
                [this](const ItemInfo& field) { return !field.target.empty() && MayRefer(field); });
        return std::any_of(m_classes.begin(), m_classes.end(),
                           [&item](const QOBClassInfo* info) { return IsA(*info, item.target); });
    }

    void AddFrom(const Entity& entity, const Holder& holder)
    {
        for (const ItemInfo* const item : holder.items) {
            if (item->Count(*entity) == 0 || !MayRefer(*item))
                continue;
            if (item->kind == ItemKind::Records) {
                for (const RecordValues& record : item->GetRecords(*entity))
                    for (const Value& value : record)
                        if (const auto* const target = std::get_if<Entity>(&value))
                            AddIfAsked(entity, *item, *target);
                continue;
            }
            for (const Entity& target : TargetsOf(*item, *entity))
                AddIfAsked(entity, *item, target);
        }
    }
    void AddIfAsked(const Entity& entity, const ItemInfo& item, const Entity& target)
    {
        if (target && m_set.contains(target.get()))
            m_found.push_back({entity, &item, target, false});
    }
    void Add(const Entity& entity, const ItemInfo& item, const Entity& target)
    {
        if (item.kind == ItemKind::Reference && HeldBy(item, *entity) != target)
            return;
        if (m_known.insert({entity.get(), &item, target.get()}).second)
            m_found.push_back({entity, &item, target, true});
    }

    const Core& m_core;
    const EntitySet& m_set;
    std::vector<Referrer>& m_found;
    std::set<const QOBClassInfo*> m_classes;
    std::set<std::tuple<const KARMPEntity*, const ItemInfo*, const KARMPEntity*>> m_known;
};

} // namespace

std::vector<Referrer> FindReferrers(const Core& core, const std::vector<Entity>& targets,
                                    const EntitySet& set)
{
    std::vector<Referrer> found;
    Search search(core, set, found);
    for (const Entity& target : targets)
        search.AddMutual(target);
    search.AddOthers(targets);
    return found;
}

} // namespace karmp::model
