#include "KARMPWorldLosses.h"

#include "KARMPInteraction.h"
#include "KARMPListedEntities.h"
#include "KARMPLossyItems.h"
#include "KARMPWorld.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace karmp::documents {

namespace {

using Handle = QOBSharedHandle<KARMPEntity>;
using Handles = std::vector<Handle>;

Handle HandleOf(const KARMPEntity& entity)
{
    return Handle::unchecked(QOBSharedBase(&entity));
}

class LossFinder
{
public:
    LossFinder(const KARMPWorld& world, std::wstring_view version, bool isCompleted)
        : m_world(world), m_entities(world), m_lossy(version)
    {
        if (isCompleted)
            NoteLayers();
    }

    std::vector<Difference> Find()
    {
        FindSettings();
        FindRemoved();
        for (std::size_t number = 0; number < m_entities.Count(); ++number) {
            const KARMPEntity& entity = m_entities.At(number);
            if (!IsFound(entity))
                continue;
            FindItems(entity);
            FindLinks(entity);
        }
        return std::move(m_losses);
    }

private:
    bool IsFound(const KARMPEntity& entity) const
    {
        return IsGivenBack(entity.getClassInfo()) || m_layers.count(&entity) != 0;
    }
    void NoteLayers();
    void FindSettings();
    void FindRemoved();
    void FindItems(const KARMPEntity& entity);
    void FindLinks(const KARMPEntity& entity);
    void Note(DifferenceKind kind, const Handle& entity, std::wstring item, Value before,
              Value after, const Handle& target = {});

    const KARMPWorld& m_world;
    ListedEntities m_entities;
    LossyItems m_lossy;
    std::unordered_set<const QOBSharedObject*> m_layers;
    std::vector<Difference> m_losses;
    ItemValue m_value;
};

void LossFinder::Note(DifferenceKind kind, const Handle& entity, std::wstring item, Value before,
                      Value after, const Handle& target)
{
    Difference loss;
    loss.kind = kind;
    loss.before = entity;
    if (kind != DifferenceKind::Removed)
        loss.after = entity;
    loss.item = std::move(item);
    loss.oldValue = std::move(before);
    loss.newValue = std::move(after);
    loss.target = target;
    m_losses.push_back(std::move(loss));
}

// A completed world finds a layer by the interactions that are about it.
void LossFinder::NoteLayers()
{
    for (std::size_t number = 0; number < m_entities.Count(); ++number) {
        const KARMPEntity& entity = m_entities.At(number);
        if (dynamic_cast<const KARMPInteraction*>(&entity) == nullptr)
            continue;
        ForEachTarget(entity, [this](const ItemInfo&, const Handle& target) {
            if (dynamic_cast<const KARMPInteraction*>(target.get()) != nullptr)
                m_layers.insert(target._getReferent());
        });
    }
}

// Documents have no unit of length and no ground body.
void LossFinder::FindSettings()
{
    KARMPUnit::Enum unit = KARMPUnit::Millimeter;
    m_world.GetLengthUnit(unit);
    if (unit != KARMPUnit::Millimeter)
        Note(DifferenceKind::Setting, {}, L"LengthUnit", static_cast<int>(unit),
             static_cast<int>(KARMPUnit::Millimeter));
    QOBSharedHandle<KARMPBody> ground;
    m_world.GetGroundBody(ground);
    if (ground)
        Note(DifferenceKind::Setting, {}, L"GroundBody", Handle(ground), {});
}

// Entities that no reading world lists or knows again, and those that the environment leaves out.
void LossFinder::FindRemoved()
{
    ForEachRegistryElement([this](const auto& element) {
        using T = typename std::remove_cvref_t<decltype(element)>::Type;
        for (int index = 0; index < m_world.Count<T>(); ++index) {
            QOBSharedHandle<T> listed;
            if (KARFailed(m_world.Get<T>(index, listed)) || !listed)
                continue;
            const Handle entity = Handle::unchecked(listed);
            if (!m_entities.Hold(entity._getReferent()) || !IsFound(*entity))
                Note(DifferenceKind::Removed, entity, {}, {}, {});
        }
    });
}

void LossFinder::FindItems(const KARMPEntity& entity)
{
    for (const LossyItem& lossy : m_lossy.Of(entity.getClassInfo())) {
        if (!lossy.IsLostOf(entity, m_value))
            continue;
        const Handle handle = HandleOf(entity);
        if (!lossy.isEntryWord) {
            Note(DifferenceKind::Changed, handle, lossy.Path(), lossy.item->Get(entity),
                 lossy.fresh);
            continue;
        }
        const auto entries = std::get<Handles>(lossy.item->Get(entity));
        const auto words = lossy.item->EntryWords(entity);
        for (std::size_t i = 0; i < std::min(entries.size(), words.size()); ++i)
            if (words[i] != std::get<EnumWord>(lossy.fresh).text)
                Note(DifferenceKind::Changed, handle, lossy.Path(), EnumWord{words[i]}, lossy.fresh,
                     entries[i]);
    }
}

void LossFinder::FindLinks(const KARMPEntity& entity)
{
    ForEachTarget(
        entity,
        [&](const ItemInfo& item, const Handle& target) {
            const bool isRead = m_entities.Hold(target._getReferent()) && IsFound(*target);
            if (!isRead && item.IsWrittenFor(entity))
                Note(DifferenceKind::LinkLost, HandleOf(entity), item.path, {}, {}, target);
        });
}

} // namespace

std::vector<Difference> FindLosses(const KARMPWorld& world, std::wstring_view version,
                                   bool isCompleted)
{
    return LossFinder(world, version, isCompleted).Find();
}

} // namespace karmp::documents
