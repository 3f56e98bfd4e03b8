#include "KARMPAxisSystem.h"
#include "KARMPDuplicates.h"
#include "KARMPFailedCheck.h"
#include "KARMPFilterParts.h"
#include "KARMPFunctionOfFamily.h"
#include "KARMPPlainKinds.h"
#include "KARMPWorld.h"
#include "KARPrefetch.h"
#include "QOBBasicWorld.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

// The first of these that an entity's class is derived from decides how it is carried over.
using FilteredFamilies =
    karmp::FamilyList<KARMPJoint, KARMPBody, KARMPConstraint, KARMPVariable, KARMPGeometry,
                      KARMPMaterial, KARMPInteraction, KARMPActuator, KARMPSensor, KARMPShape,
                      KARMPAttribute, KARMPSupport, KARMPDebugEntity, KARMPInitialCondition,
                      KARMPAnalysisCase, KARMPAnalysisStep, KARMPGenericEntity>;
static_assert(karmp::HoldSameFamilies(karmp::Families(),
                                      FilteredFamilies::And<KARMPConnector, KARMPValue>()),
              "a filtered clone carries over all families but connectors and values");

// A copy of an entity by its own duplicateObject; null where that makes none.
QOBSharedBase DuplicateOf(const QOBSharedBase& entity)
{
    return QOBSharedBase::adopt(
        entity._getReferent()->duplicateObject(QOBDynamicObject::CopyShallow));
}

QOBSharedBase CopyOf(const QOBSharedObject& entity, const karmp::PlainKind& kind)
{
    return QOBSharedBase::adopt(kind.copy(entity, QOBDynamicObject::CopyShallow));
}

// Throws when an entity is no T.
template <class T>
void Check(const QOBSharedBase& entity)
{
    const QOBSharedHandle<T> checked(entity);
}

} // namespace

namespace karmp {

/// Makes a world of duplicates of a world's entities.
class WorldCloner
{
public:
    explicit WorldCloner(const KARMPWorld& source) : m_source(source) {}

    /// Makes the new world, with the settings; false when it cannot be had.
    bool Create();
    void DuplicateAll();
    void Duplicate(const QOBSharedList<KARMPEntity>& filter, Duplicates& duplicates);
    void DuplicateGlobals();
    const QOBSharedHandle<KARMPWorld>& Target() const { return m_target; }

private:
    using Cast = void (*)(const QOBSharedBase& entity);
    using DuplicateFiltered = void (*)(WorldCloner& cloner, const QOBSharedBase& entity,
                                       Duplicates& duplicates);
    template <class T>
    struct DuplicateAs
    {
        static void Call(WorldCloner& cloner, const QOBSharedBase& entity, Duplicates& duplicates)
        {
            bool isShared = false;
            QOBSharedObject* const duplicate =
                Duplicate(entity, cloner.m_source.Registry<T>().Core(),
                          cloner.m_target->Registry<T>().Core(), &Check<T>, isShared);
            if (isShared)
                duplicates.NoteShared(duplicate);
            if (duplicate != nullptr)
                duplicates.Enter(entity._getReferent(), duplicate);
        }
    };

    const PlainKind* KindOf(const QOBSharedObject& entity);
    static void File(const QOBSharedObject& entity, const RegistryCore& source,
                     RegistryCore& target, QOBSharedBase&& duplicate);
    static QOBSharedObject* Duplicate(const QOBSharedBase& entity, const RegistryCore& source,
                                      RegistryCore& target, Cast check, bool& isShared);
    void DuplicateAll(const RegistryCore& source, RegistryCore& target, Cast check);
    void Reserve(const QOBSharedObject& entity, std::size_t count);
    bool DuplicatePlain(const QOBSharedObject& entity, Duplicates& duplicates);
    std::vector<RegistryWalk> RegistriesOf(const QOBSharedList<KARMPEntity>& filter) const;
    void Duplicate(QOBSharedList<KARMPEntity>::const_iterator entity, std::size_t count,
                   Duplicates& duplicates);
    void File(const QOBSharedList<KARMPEntity>& filter, std::vector<FilterCopy>& copies);
    bool DuplicateInMemoryOrder(const QOBSharedList<KARMPEntity>& filter, Duplicates& duplicates);
    template <class T>
    static void DuplicateGlobal(const QOBSharedHandle<T>& source, QOBSharedHandle<T>& target);

    const KARMPWorld& m_source;
    QOBSharedHandle<KARMPWorld> m_target;
    PlainKinds m_kinds;
    FunctionOfFamily<FilteredFamilies, DuplicateFiltered> m_functions;
};

bool WorldCloner::Create()
{
    const QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"BasicWorld");
    if (!basicWorld)
        return false;
    m_target = KARMPWorld::create(basicWorld);
    if (!KARMPVerify(static_cast<bool>(m_target)))
        return false;
    m_target->m_size = m_source.m_size;
    m_target->m_linearTolerance = m_source.m_linearTolerance;
    m_target->m_angularTolerance = m_source.m_angularTolerance;
    m_target->m_origin = m_source.m_origin;
    m_target->m_gravity = m_source.m_gravity;
    return true;
}

void WorldCloner::DuplicateAll()
{
    Families::ForEach([this](auto family) {
        using T = typename decltype(family)::Type;
        DuplicateAll(m_source.Registry<T>().Core(), m_target->Registry<T>().Core(), &Check<T>);
    });
}

// How the class of an entity is cloned; null when the entity itself must be asked to copy itself.
const PlainKind* WorldCloner::KindOf(const QOBSharedObject& entity)
{
    return m_kinds.Of(
        entity,
        [this](const QOBClassInfo& info) {
            const QOBClassOperations& operations = info.getOperations();
            PlainKind kind{operations.duplicate,      nullptr,           nullptr, 0,
                           operations.hasFamilyLinks, PlaceLinksOf(info)};
            FilteredFamilies::AnyOf([&](auto family) {
                using T = typename decltype(family)::Type;
                if (!info.isDerivedFrom(T::ClassInfo())) {
                    ++kind.family;
                    return false;
                }
                kind.source = &m_source.Registry<T>().Core();
                kind.target = &m_target->Registry<T>().Core();
                return true;
            });
            return kind;
        });
}

// Files the copy of an entity of a plain class, which nobody else refers to, under its keys.
void WorldCloner::File(const QOBSharedObject& entity, const RegistryCore& source,
                       RegistryCore& target, QOBSharedBase&& duplicate)
{
    KARBaseUnknown_var key1;
    KARBaseUnknown_var key2;
    if (source.HasKeys())
        source.GetKeys(QOBSharedBase(&entity), key1, key2);
    target.AddNew(key1, key2, std::move(duplicate));
}

void WorldCloner::DuplicateAll(const RegistryCore& source, RegistryCore& target, Cast check)
{
    constexpr std::size_t Ahead = kar::PrefetchDistance;
    target.Reserve(source.Count());
    std::size_t index = 0;
    while (index < source.Count()) {
        const std::span<const QOBSharedBase> entities = source.From(index);
        for (std::size_t next = 0; next < entities.size(); ++next, ++index) {
            if (next + 2 * Ahead < entities.size())
                PrefetchEntity(entities[next + 2 * Ahead]._getReferent());
            if (next + Ahead < entities.size())
                PrefetchName(entities[next + Ahead]._getReferent());
            const QOBSharedObject& entity = *entities[next]._getReferent();
            if (const PlainKind* const kind = KindOf(entity)) {
                File(entity, source, target, CopyOf(entity, *kind));
                continue;
            }
            // The caller's class may change the registry: the walk begins anew behind it.
            bool isShared = false;
            Duplicate(QOBSharedBase(&entity), source, target, check, isShared);
            ++index;
            break;
        }
    }
}

// The duplicate, which is filed under the keys of its source; null where none can be made. It is
// shared when others refer to it already.
QOBSharedObject* WorldCloner::Duplicate(const QOBSharedBase& entity, const RegistryCore& source,
                                        RegistryCore& target, Cast check, bool& isShared)
{
    KARBaseUnknown_var key1;
    KARBaseUnknown_var key2;
    if (!KARMPVerify(!KARFailed(source.GetKeys(entity, key1, key2))))
        return nullptr;
    QOBSharedBase duplicate = DuplicateOf(entity);
    QOBSharedObject* const referent = duplicate._getReferent();
    if (!KARMPVerify(referent != nullptr))
        return nullptr;
    // A copy has the class of its source and is referred to by nobody but for what a class of the
    // caller's may do.
    if (&referent->getClassInfo() != &entity._getReferent()->getClassInfo())
        check(duplicate);
    isShared = referent->getReferenceCount() > 1;
    if (!isShared)
        target.AddNew(key1, key2, std::move(duplicate));
    else
        KARMPVerify(!KARFailed(target.Add(key1, key2, duplicate)));
    return referent;
}

void WorldCloner::Duplicate(const QOBSharedList<KARMPEntity>& filter, Duplicates& duplicates)
{
    std::vector<RegistryWalk> registries = RegistriesOf(filter);
    const bool areApart =
        registries.empty() ? AddressOrder::AreApart(filter) : AddressOrder::AreApart(registries);
    if (areApart && DuplicateInMemoryOrder(filter, duplicates))
        return;
    if (registries.empty()) {
        Duplicate(filter.begin(), filter.size(), duplicates);
        return;
    }
    for (const RegistryWalk& registry : registries)
        Reserve(registry.Current(), registry.Count());
    VisitByTurns(registries,
                 [&](const QOBSharedObject& entity) { return DuplicatePlain(entity, duplicates); });
    auto entity = filter.begin();
    for (const RegistryWalk& registry : registries) {
        const std::size_t rest = registry.Count() - registry.Done();
        std::advance(entity, static_cast<std::ptrdiff_t>(registry.Done()));
        Duplicate(entity, rest, duplicates);
        std::advance(entity, static_cast<std::ptrdiff_t>(rest));
    }
}

// Duplicates some entities in the order of the list, which classes that are not plain see.
void WorldCloner::Duplicate(QOBSharedList<KARMPEntity>::const_iterator entity, std::size_t count,
                            Duplicates& duplicates)
{
    LookAhead<2 * kar::PrefetchDistance> entities(entity, count);
    LookAhead<kar::PrefetchDistance> names(entity, count);
    for (; count > 0; --count, ++entity) {
        if (const auto* const ahead = entities.Next())
            PrefetchEntity(ahead->get());
        if (const auto* const ahead = names.Next())
            PrefetchName(ahead->get());
        if (!KARMPVerify(static_cast<bool>(*entity)) || DuplicatePlain(**entity, duplicates))
            continue;
        duplicates.NoteOther();
        if (const DuplicateFiltered duplicate = m_functions.Of<DuplicateAs>(entity->getClassInfo()))
            duplicate(*this, *entity, duplicates);
    }
}

// Prepares for some entities of the same family as one of them.
void WorldCloner::Reserve(const QOBSharedObject& entity, std::size_t count)
{
    if (const PlainKind* const kind = KindOf(entity))
        if (kind->target != nullptr)
            kind->target->Reserve(count);
}

// False, with nothing done, for an entity whose class is not plain.
bool WorldCloner::DuplicatePlain(const QOBSharedObject& entity, Duplicates& duplicates)
{
    const PlainKind* const kind = KindOf(entity);
    if (kind == nullptr)
        return false;
    if (kind->target == nullptr)
        return true;
    if (!kind->hasFamilyLinks)
        duplicates.NoteOther();
    QOBSharedBase copy = CopyOf(entity, *kind);
    QOBSharedObject& duplicate = *copy._getReferent();
    File(entity, *kind->source, *kind->target, std::move(copy));
    duplicates.Enter(entity, duplicate, *kind);
    return true;
}

// The registries that a list consists of, one behind the other, each from its first entity on;
// none for another list.
std::vector<RegistryWalk> WorldCloner::RegistriesOf(const QOBSharedList<KARMPEntity>& filter) const
{
    std::vector<RegistryWalk> registries;
    auto entity = filter.begin();
    Families::ForEach([&](auto family) {
        const RegistryCore& registry = m_source.Registry<typename decltype(family)::Type>().Core();
        std::size_t count = 0;
        bool isSame = true;
        while (isSame && count < registry.Count()) {
            for (const QOBSharedBase& listed : registry.From(count)) {
                isSame = entity != filter.end() && *entity == listed;
                if (!isSame)
                    break;
                ++entity;
                ++count;
            }
        }
        if (count > 0)
            registries.emplace_back(registry, count);
    });
    if (entity != filter.end())
        registries.clear();
    return registries;
}

// Duplicates entities of plain classes alone that are listed in quite another order than they lie
// in memory: they are copied in that one, and filed in the list's. False, with nothing done, for
// other classes.
bool WorldCloner::DuplicateInMemoryOrder(const QOBSharedList<KARMPEntity>& filter,
                                         Duplicates& duplicates)
{
    std::vector<FilterCopy> copies(filter.size());
    std::vector<AddressOrder::Entry> entries;
    entries.reserve(filter.size());
    LookAhead<kar::FarPrefetchDistance> entities(filter);
    std::uint32_t index = 0;
    for (const QOBSharedHandle<KARMPEntity>& entity : filter) {
        if (const auto* const ahead = entities.Next())
            kar::Prefetch(ahead->get(), 1);
        const PlainKind* const kind = entity ? KindOf(*entity) : nullptr;
        if (kind == nullptr)
            return false;
        copies[index].kind = kind;
        if (kind->target != nullptr)
            entries.push_back({entity.get(), index, kind->family});
        ++index;
    }
    AddressOrder::Sort(entries);
    std::vector<SortedPart> parts = karmp::PartsOf(entries, copies);
    for (const SortedPart& part : parts)
        Reserve(*part.Current().object, part.Count());
    try {
        VisitByTurns(parts, [&](const AddressOrder::Entry& entry) {
            FilterCopy& copy = copies[entry.index];
            if (!copy.kind->hasFamilyLinks)
                duplicates.NoteOther();
            copy.duplicate = CopyOf(*entry.object, *copy.kind);
            duplicates.Enter(*entry.object, *copy.duplicate._getReferent(), *copy.kind);
            return true;
        });
        File(filter, copies);
    } catch (...) {
        duplicates.Discard(); // while all of them are there
        throw;
    }
    return true;
}

void WorldCloner::File(const QOBSharedList<KARMPEntity>& filter, std::vector<FilterCopy>& copies)
{
    auto copy = copies.begin();
    for (const QOBSharedHandle<KARMPEntity>& entity : filter) {
        if (copy->duplicate)
            File(*entity, *copy->kind->source, *copy->kind->target, std::move(copy->duplicate));
        ++copy;
    }
}

void WorldCloner::DuplicateGlobals()
{
    DuplicateGlobal(m_source.m_globalBody, m_target->m_globalBody);
    DuplicateGlobal(m_source.m_globalAxisSystem, m_target->m_globalAxisSystem);
    DuplicateGlobal(m_source.m_globalTime, m_target->m_globalTime);
}

template <class T>
void WorldCloner::DuplicateGlobal(const QOBSharedHandle<T>& source, QOBSharedHandle<T>& target)
{
    if (!KARMPVerify(static_cast<bool>(source)))
        return;
    const QOBSharedHandle<T> duplicate(DuplicateOf(source));
    if (KARMPVerify(static_cast<bool>(duplicate)))
        target = duplicate;
}

} // namespace karmp

QOBSharedHandle<KARMPWorld> KARMPWorld::Clone() const
{
    karmp::WorldCloner cloner(*this);
    if (cloner.Create()) {
        cloner.DuplicateAll();
        cloner.DuplicateGlobals();
    }
    return cloner.Target();
}

QOBSharedHandle<KARMPWorld> KARMPWorld::CloneWithFilter(
    const QOBSharedList<KARMPEntity>& filter) const
{
    karmp::WorldCloner cloner(*this);
    if (cloner.Create()) {
        karmp::Duplicates duplicates(filter);
        try {
            cloner.Duplicate(filter, duplicates);
            duplicates.FinishEntering();
            cloner.DuplicateGlobals();
            duplicates.RestoreLinks();
        } catch (...) {
            duplicates.Discard();
            throw;
        }
    }
    return cloner.Target();
}
