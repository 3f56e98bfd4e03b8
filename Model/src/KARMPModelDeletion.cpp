// Deleting entities: what goes with them, what refers to them, and what that leaves short.
#include "KARMPBody.h"
#include "KARMPModel.h"
#include "KARMPReferrers.h"
#include "KARMPSensor.h"
#include "KARMPVariable.h"
#include "KARTextConversion.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <unordered_map>
#include <utility>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

/// An item of a class.
struct ItemOf
{
    std::string_view className;
    std::wstring_view item;
    /// Of lists that entities need, the least number of entries.
    int least = 0;
    static constexpr int All = std::numeric_limits<int>::max();
};

/// What goes with an entity.
constexpr std::array Owned{
    ItemOf{"KARMPBody", L"Geometries"},
    ItemOf{"KARMPJoint", L"Constraints"},
    ItemOf{"KARMPEntity", L"AggregatedElements"},
};
/// The lists without whose entries an entity is nothing. Single references count as needed, but for
/// those below.
constexpr std::array Needed{
    ItemOf{"KARMPJoint", L"Bodies", 2},
    ItemOf{"KARMPJoint2D", L"Bodies2D", 2},
    ItemOf{"KARMPJoint", L"Constraints", 1},
    ItemOf{"KARMPConstraint", L"Geometries", 2},
    ItemOf{"KARMPEquation", L"Variables", 2},
    ItemOf{"KARMPExpression", L"Variables", ItemOf::All},
    ItemOf{"KARMPShape", L"Bodies", 1},
    ItemOf{"KARMPConnector", L"Geometries", 2},
    ItemOf{"KARMPInteraction", L"Collidables", 2},
};
constexpr std::array Spared{
    ItemOf{"KARMPBody", L"DisplacementSensor"},
    ItemOf{"KARMPConstraint", L"Joint"},
};

template <std::size_t N>
const ItemOf* FindIn(const std::array<ItemOf, N>& table, const KARMPEntity& entity,
                     std::wstring_view item)
{
    const auto found = std::find_if(table.begin(), table.end(), [&](const ItemOf& row) {
        return row.item == item && IsA(entity.getClassInfo(), row.className);
    });
    return found != table.end() ? &*found : nullptr;
}

/// What one call deletes.
class Plan
{
public:
    explicit Plan(const Core& core) : m_core(core) {}

    const std::vector<Entity>& Gone() const { return m_gone; }
    const std::vector<Referrer>& Referrers() const { return m_referrers; }

    void Make(std::span<const Ref<KARMPEntity>> entities, bool withShort)
    {
        for (const Ref<KARMPEntity>& entity : entities)
            AddOwned(entity.Handle());
        std::size_t done = 0;
        do {
            done = m_gone.size();
            m_referrers = FindReferrers(m_core, m_gone, m_set);
            CountLost();
            if (withShort)
                for (const Referrer& referrer : m_referrers)
                    if (IsShort(referrer))
                        AddOwned(referrer.entity);
        } while (m_gone.size() > done);
    }

    /// True when what is left of the item is not enough.
    bool IsShort(const Referrer& referrer) const
    {
        const KARMPEntity& entity = *referrer.entity;
        if (referrer.item->kind == ItemKind::Reference)
            return FindIn(Spared, entity, referrer.item->name) == nullptr;
        const ItemOf* const needed = FindIn(Needed, entity, referrer.item->name);
        if (needed == nullptr)
            return false;
        const int lost = m_lost.at({&entity, referrer.item});
        return referrer.item->Count(entity) - lost < needed->least;
    }

private:
    /// A list of an entity.
    using List = std::pair<const KARMPEntity*, const ItemInfo*>;
    struct ListHash
    {
        std::size_t operator()(const List& list) const
        {
            const std::hash<const void*> hash;
            return hash(list.first) * 31 + hash(list.second);
        }
    };

    void CountLost()
    {
        m_lost.clear();
        for (const Referrer& referrer : m_referrers)
            ++m_lost[{referrer.entity.get(), referrer.item}];
    }
    void AddOwned(const Entity& entity)
    {
        std::vector<Entity> open{entity};
        while (!open.empty()) {
            const Entity next = std::move(open.back());
            open.pop_back();
            if (!m_set.insert(next.get()).second)
                continue;
            m_gone.push_back(next);
            for (const ItemInfo* const item : LinkItemsOf(next->getClassInfo()))
                if (FindIn(Owned, *next, item->name) != nullptr || item->isOwned)
                    for (Entity& owned : TargetsOf(*item, *next))
                        open.push_back(std::move(owned));
        }
    }

    const Core& m_core;
    std::vector<Entity> m_gone;
    EntitySet m_set;
    std::vector<Referrer> m_referrers;
    std::unordered_map<List, int, ListHash> m_lost; // how many entries
};

// What comes with a world stays.
bool IsKept(const KARMPWorld& world, const Entity& entity)
{
    QOBSharedHandle<KARMPBody> global;
    QOBSharedHandle<KARMPBody> ground;
    QOBSharedHandle<KARMPAxisSystem> axisSystem;
    QOBSharedHandle<KARMPVariable> time;
    world.GetGlobalBody(global);
    world.GetGroundBody(ground);
    world.GetGlobalAxisSystem(axisSystem);
    world.GetGlobalTime(time);
    const QOBSharedObject* const object = entity._getReferent();
    return object == global._getReferent() || object == ground._getReferent() ||
           object == axisSystem._getReferent() || object == time._getReferent();
}

bool UnlinkAll(Edit& edit, const Plan& plan)
{
    for (const Referrer& referrer : plan.Referrers()) {
        const ItemInfo& item = *referrer.item;
        bool any = false;
        if (item.kind == ItemKind::Records)
            continue;
        if (!item.CanRemoveTarget())
            return edit.Fail(TitleOf(*referrer.entity) + " cannot let go of " +
                             TitleOf(*referrer.target) + ", its \"" + kar::ToUtf8(item.path) + '"');
        if (!edit.UnlinkOne(item, referrer.entity, referrer.target, any))
            return false;
    }
    return true;
}

using FamiliesOfGone = std::vector<std::size_t>;

// Before anything is done: looking a class up for the first time allocates.
FamiliesOfGone FindFamilies(const Plan& plan)
{
    FamiliesOfGone families;
    families.reserve(plan.Gone().size());
    for (const Entity& entity : plan.Gone())
        families.push_back(FamilyOf(*entity));
    return families;
}

// What measurements refer to is forgotten as a whole, and by now nothing can fail.
void RemoveAll(Core& core, const Plan& plan, const FamiliesOfGone& families)
{
    for (const Referrer& referrer : plan.Referrers())
        if (referrer.item->kind == ItemKind::Records)
            if (auto* const sensor = dynamic_cast<KARMPSensor*>(referrer.entity.get()))
                sensor->Reset();
    for (std::size_t i = 0; i < families.size(); ++i)
        if (families[i] != NoFamily)
            core.Unfile(plan.Gone()[i], families[i]);
}

Dependent Told(const Referrer& referrer)
{
    return {Ref<KARMPEntity>(referrer.entity), kar::ToUtf8(referrer.item->path),
            Ref<KARMPEntity>(referrer.target)};
}

} // namespace

Deletion Model::Delete(const Ref<KARMPEntity>& entity, const DeleteOptions& options, Where where)
{
    return DeleteAll(
        1,
        [](const void* list, std::size_t) { return *static_cast<const Ref<KARMPEntity>*>(list); },
        &entity, options, where);
}

Deletion Model::DeleteAll(std::size_t count,
                          Ref<KARMPEntity> (*at)(const void* list, std::size_t index),
                          const void* list, const DeleteOptions& options, Where where)
{
    Deletion deletion;
    deletion.succeeded = m_core->Perform(where, [&](Edit& edit) {
        RefList<KARMPEntity> entities;
        for (std::size_t index = 0; index < count; ++index)
            entities.push_back(at(list, index));
        for (const Ref<KARMPEntity>& entity : entities)
            if (!edit.IsThere(entity.Handle(), "entity to delete"))
                return false;
        if (m_core->IsInBlock() && !options.preview)
            return edit.Fail("a deletion cannot be undone with the block of edits it is in");
        Plan plan(*m_core);
        plan.Make(entities, options.withShort);
        for (const Entity& gone : plan.Gone())
            if (IsKept(*World(), gone))
                return edit.Fail(TitleOf(*gone) + " belongs to the world and stays");
        Deletion told;
        for (const Entity& gone : plan.Gone())
            told.gone.emplace_back(gone);
        for (const Referrer& referrer : plan.Referrers()) {
            told.unlinked.push_back(Told(referrer));
            if (plan.IsShort(referrer))
                told.leftShort.push_back(told.unlinked.back());
        }
        if (!options.preview) {
            const FamiliesOfGone families = FindFamilies(plan);
            if (!UnlinkAll(edit, plan))
                return false;
            RemoveAll(*m_core, plan, families);
        }
        deletion = std::move(told);
        return true;
    });
    return deletion;
}

std::vector<Dependent> Model::Dependents(const Ref<KARMPEntity>& entity) const
{
    std::vector<Dependent> dependents;
    if (!entity || m_core->IsForeign(*entity))
        return dependents;
    for (const Referrer& referrer : FindReferrers(*m_core, {entity.Handle()}, {&*entity}))
        dependents.push_back(Told(referrer));
    return dependents;
}

} // namespace karmp::model
