#include "KARMPAxisSystem.h"
#include "KARMPDuplicates.h"
#include "KARMPFailedCheck.h"
#include "KARMPFunctionOfFamily.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <utility>

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

// An entity is prefetched first, then, by what it holds, its name, which is memory of its own.
void PrefetchEntity(const QOBSharedBase& entity)
{
    kar::Prefetch(entity._getReferent(), karmp::CopiedBytes);
}
void PrefetchName(const QOBSharedBase& entity)
{
    const auto* const named = static_cast<const QOBBasicEntity*>(entity._getReferent());
    kar::Prefetch(named->getEntityName().data(), 1);
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
            QOBSharedObject* const duplicate =
                Duplicate(entity, cloner.m_source.Registry<T>().Core(),
                          cloner.m_target->Registry<T>().Core(), &Check<T>);
            if (duplicate != nullptr)
                duplicates.Enter(entity._getReferent(), duplicate);
        }
    };

    static QOBSharedObject* Duplicate(const QOBSharedBase& entity, const RegistryCore& source,
                                      RegistryCore& target, Cast check);
    static void DuplicateAll(const RegistryCore& source, RegistryCore& target, Cast check);
    template <class T>
    static void DuplicateGlobal(const QOBSharedHandle<T>& source, QOBSharedHandle<T>& target);

    const KARMPWorld& m_source;
    QOBSharedHandle<KARMPWorld> m_target;
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

void WorldCloner::DuplicateAll(const RegistryCore& source, RegistryCore& target, Cast check)
{
    target.Reserve(source.Count());
    for (std::size_t index = 0; index < source.Count(); ++index) {
        constexpr std::size_t Ahead = kar::PrefetchDistance;
        if (index + 2 * Ahead < source.Count())
            PrefetchEntity(source.At(index + 2 * Ahead));
        if (index + Ahead < source.Count())
            PrefetchName(source.At(index + Ahead));
        const QOBSharedBase entity = source.At(index);
        Duplicate(entity, source, target, check);
    }
}

// The duplicate, which is filed under the keys of its source; null where none can be made.
QOBSharedObject* WorldCloner::Duplicate(const QOBSharedBase& entity, const RegistryCore& source,
                                        RegistryCore& target, Cast check)
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
    if (referent->getReferenceCount() == 1)
        target.AddNew(key1, key2, std::move(duplicate));
    else
        KARMPVerify(!KARFailed(target.Add(key1, key2, duplicate)));
    return referent;
}

void WorldCloner::Duplicate(const QOBSharedList<KARMPEntity>& filter, Duplicates& duplicates)
{
    FunctionOfFamily<FilteredFamilies, DuplicateFiltered> functions;
    LookAhead<2 * kar::PrefetchDistance> entities(filter);
    LookAhead<kar::PrefetchDistance> names(filter);
    for (const QOBSharedHandle<KARMPEntity>& entity : filter) {
        if (const auto* const ahead = entities.Next()) {
            PrefetchEntity(*ahead);
            duplicates.Prefetch(ahead->get());
        }
        if (const auto* const ahead = names.Next(); ahead != nullptr && *ahead)
            PrefetchName(*ahead);
        if (!KARMPVerify(static_cast<bool>(entity)))
            continue;
        if (const DuplicateFiltered duplicate = functions.Of<DuplicateAs>(entity.getClassInfo()))
            duplicate(*this, entity, duplicates);
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
        karmp::Duplicates duplicates(filter.size());
        cloner.Duplicate(filter, duplicates);
        cloner.DuplicateGlobals();
        karmp::RestoreLinks(filter, duplicates);
    }
    return cloner.Target();
}
