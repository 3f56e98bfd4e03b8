#include "KARMPExtractionSelection.h"

#include "KARMPConstraint.h"
#include "KARMPFamilies.h"
#include "KARMPGeometry.h"
#include "KARMPItems.h"
#include "KARMPJoint.h"
#include "KARMPSchemaClasses.h"
#include "KARMPShape.h"
#include "KARMPSketch.h"
#include "KARMPValue.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace karmp::documents {

namespace {

using Target = QOBSharedHandle<KARMPEntity>;

template <class... T>
bool IsOneOf(const KARMPEntity& entity)
{
    return (entity.isDerivedFrom(T::ClassInfo()) || ...);
}

// The families of what is found from the bodies by links.
using Structure = FamilyList<KARMPBody, KARMPShape, KARMPJoint, KARMPConstraint, KARMPGeometry,
                             KARMPVariable, KARMPValue>;

bool IsStructure(const KARMPEntity& entity)
{
    return Structure::AnyOf([&entity](auto family) {
        return entity.isDerivedFrom(decltype(family)::Type::ClassInfo());
    });
}

// Belongs to the entity that refers to it and comes along with that one.
bool IsPart(const KARMPEntity& entity)
{
    const std::wstring_view family = FamilyElementOf(entity);
    return family == RegistryElementName<KARMPValue>() ||
           family == RegistryElementName<KARMPAttribute>() ||
           family == RegistryElementName<KARMPSupport>() ||
           family == RegistryElementName<KARMPAnalysisStep>();
}

// A part whose family nobody has to ask for: it means nothing but to its holder.
bool IsOnlyAPart(const KARMPEntity& entity)
{
    const std::wstring_view family = FamilyElementOf(entity);
    return family == RegistryElementName<KARMPSupport>() ||
           family == RegistryElementName<KARMPAnalysisStep>();
}

// Means something without a link to any other entity.
bool StandsAlone(const KARMPEntity& entity)
{
    const std::wstring_view family = FamilyElementOf(entity);
    return family == RegistryElementName<KARMPAnalysisCase>() ||
           family == RegistryElementName<KARMPAnalysisStep>() ||
           family == RegistryElementName<KARMPInitialCondition>() ||
           family == RegistryElementName<KARMPGenericEntity>() ||
           family == RegistryElementName<KARMPDebugEntity>() ||
           family == RegistryElementName<KARMPMaterial>();
}

template <class T, class Visit>
void ForEachOf(const KARMPWorld& world, Visit& visit)
{
    QOBSharedHandle<T> entity;
    for (int index = 0; index < world.Count<T>(); ++index)
        if (!KARFailed(world.Get<T>(index, entity)) && entity)
            visit(Target::unchecked(entity));
}

// Calls `visit` with each listed entity, in the order of documents.
template <class Visit>
void ForEachEntityOf(const KARMPWorld& world, Visit visit)
{
    ForEachRegistryElement([&](const auto& element) {
        ForEachOf<typename std::remove_cvref_t<decltype(element)>::Type>(world, visit);
    });
}

} // namespace

std::wstring_view FamilyElementOf(const KARMPEntity& entity)
{
    static thread_local std::unordered_map<const QOBClassInfo*, std::wstring_view> known;
    const auto [found, isNew] = known.try_emplace(&entity.getClassInfo());
    if (isNew) {
        const std::vector<std::string> lineage = LineageOf(entity);
        for (const FamilyRecord& family : FamilyRecords())
            if (std::find(lineage.begin(), lineage.end(), family.info->getName()) != lineage.end())
                found->second = family.element;
    }
    return found->second;
}

ExtractionSelection::ExtractionSelection(const KARMPWorld& world,
                                         const std::vector<QOBSharedHandle<KARMPBody>>& bodies,
                                         const ExtractionOptions& options)
    : m_world(world), m_options(options)
{
    CollectAttached();
    SelectBodies(bodies, options.reach);
    for (const Entity& entity : m_attached)
        if (IsWanted(*entity) && (!IsPart(*entity) || StandsAlone(*entity)) &&
            m_known.insert(entity.get()).second)
            m_candidates.push_back(entity);
    do
        SelectCandidates();
    while (AddOneSided());
    KeepWaiting();
    PutInOrder();
}

ExtractionSelection::ExtractionSelection(const KARMPWorld& world) : m_world(world)
{
    ForEachEntityOf(
        world,
        [this](const Entity& entity) {
            m_selected.insert(entity.get());
            m_entities.push_back(entity);
        });
}

bool ExtractionSelection::IsWanted(const KARMPEntity& entity) const
{
    return IsStructure(entity) || std::find(m_options.families.begin(), m_options.families.end(),
                                            FamilyElementOf(entity)) != m_options.families.end();
}

void ExtractionSelection::CollectAttached()
{
    const auto collect = [this](const Entity& entity) { m_attached.push_back(entity); };
    // A large world consists of structure, which need not be visited.
    ForEachRegistryElement([&](const auto& element) {
        using T = typename std::remove_cvref_t<decltype(element)>::Type;
        const bool isStructure = Structure::AnyOf(
            [](auto family) { return std::is_same_v<typename decltype(family)::Type, T>; });
        if (!isStructure)
            ForEachOf<T>(m_world, collect);
    });
}

void ExtractionSelection::SelectBodies(const std::vector<QOBSharedHandle<KARMPBody>>& bodies,
                                       int reach)
{
    // The connectors that are taken along lead from body to body as joints do. Bodies need not
    // refer back to either.
    std::unordered_multimap<const KARMPEntity*, Entity> between;
    const auto addBetween = [&between](const Entity& entity) {
        ForEachTarget(*entity, [&](const ItemInfo&, const Target& target) {
            between.emplace(target.get(), entity);
        });
    };
    if (reach > 0) {
        for (const Entity& entity : m_attached)
            if (IsWanted(*entity) && FamilyElementOf(*entity) == L"Connectors")
                addBetween(entity);
        for (int index = 0; index < m_world.Count<KARMPJoint>(); ++index) {
            QOBSharedHandle<KARMPJoint> joint;
            if (!KARFailed(m_world.Get<KARMPJoint>(index, joint)) && joint)
                addBetween(Entity::unchecked(joint));
        }
    }
    std::vector<Entity> front;
    for (const auto& body : bodies)
        if (body && !Has(body.get())) {
            Select(body);
            front.push_back(body);
        }
    for (int step = 0; step < reach && !front.empty(); ++step) {
        std::vector<Entity> next;
        std::unordered_set<const KARMPEntity*> passed;
        const auto pass = [&](const Entity& link) {
            if (!passed.insert(link.get()).second)
                return;
            const Footprint footprint = FootprintOf(link);
            for (const KARMPEntity* body : footprint.bodies)
                if (!Has(body)) {
                    const Entity reached(const_cast<KARMPEntity*>(body));
                    Select(reached);
                    next.push_back(reached);
                }
        };
        for (const Entity& body : front) {
            ForEachTarget(*body, [&](const ItemInfo&, const Target& target) {
                if (IsOneOf<KARMPGeometry>(*target))
                    ForEachTarget(*target, [&](const ItemInfo&, const Target& user) {
                        if (IsOneOf<KARMPConstraint>(*user))
                            pass(user);
                    });
            });
            const auto [begin, end] = between.equal_range(body.get());
            for (auto entry = begin; entry != end; ++entry)
                pass(entry->second);
        }
        front = std::move(next);
    }
}

void ExtractionSelection::Select(const Entity& entity)
{
    if (!m_selected.insert(entity.get()).second)
        return;
    m_known.insert(entity.get());
    std::vector<Entity> parts;
    const bool isSketch = IsOneOf<KARMPSketch>(*entity);
    ForEachTarget(*entity, [&](const ItemInfo&, const Target& target) {
        const bool isCarrier = isSketch && IsCarrier(*target);
        if (!(IsWanted(*target) || IsOnlyAPart(*target)) ||
            (IsOneOf<KARMPBody>(*target) && !isCarrier))
            return;
        if (IsPart(*target) || isCarrier)
            parts.push_back(target);
        else if (m_known.insert(target.get()).second)
            m_candidates.push_back(target);
    });
    for (const Entity& part : parts)
        Select(part);
}

// The body that a sketch is on. The global body of the extract stands for that of the source.
bool ExtractionSelection::IsCarrier(const KARMPEntity& target) const
{
    QOBSharedHandle<KARMPBody> global;
    m_world.GetGlobalBody(global);
    return IsOneOf<KARMPBody>(target) && &target != global.get();
}

void ExtractionSelection::SelectCandidates()
{
    // A candidate that does not come along may do so when a further variable has.
    for (bool changed = true; changed;) {
        changed = false;
        std::vector<Entity> waiting;
        while (!m_candidates.empty()) {
            const Entity candidate = std::move(m_candidates.back());
            m_candidates.pop_back();
            if (ComesAlong(candidate)) {
                Select(candidate);
                changed = true;
            } else {
                waiting.push_back(candidate);
            }
        }
        m_candidates = std::move(waiting);
    }
}

// What refers to a selected entity that does not refer back. True when there is any. All that lies
// in the plane of a sketch refers to the sketch, and has nothing to do with what else lies there.
bool ExtractionSelection::AddOneSided()
{
    const std::size_t before = m_candidates.size();
    const auto add = [this](const Entity& entity) {
        if (m_known.count(entity.get()) != 0)
            return;
        bool refers = false;
        ForEachTarget(*entity, [&](const ItemInfo&, const Target& target) {
            refers = refers || (Has(target.get()) && !IsPart(*target));
        });
        if (refers && m_known.insert(entity.get()).second)
            m_candidates.push_back(entity);
    };
    ForEachOf<KARMPShape>(m_world, add);
    ForEachOf<KARMPJoint>(m_world, add);
    ForEachOf<KARMPConstraint>(m_world, add);
    ForEachOf<KARMPGeometry>(m_world, add);
    return m_candidates.size() > before;
}

// The attached entities tell of their links anyway.
void ExtractionSelection::KeepWaiting()
{
    std::unordered_set<const KARMPEntity*> waiting;
    for (const Entity& candidate : m_candidates)
        if (IsStructure(*candidate))
            waiting.insert(candidate.get());
    if (waiting.empty())
        return;
    ForEachEntityOf(m_world, [&](const Entity& entity) {
        if (waiting.count(entity.get()) != 0)
            m_waiting.push_back(entity);
    });
}

// A variable becomes a candidate by an entity that uses it, a sketch by one that lies in it.
bool ExtractionSelection::ComesAlong(const Entity& candidate)
{
    if (IsOneOf<KARMPVariable, KARMPSketch>(*candidate))
        return true;
    if (!IsStructure(*candidate))
        return AttachedComesAlong(candidate);
    const Footprint footprint = FootprintOf(candidate);
    const auto& needed = footprint.bodies.empty() ? footprint.variables : footprint.bodies;
    return !needed.empty() &&
           std::all_of(needed.begin(), needed.end(),
                       [this](const KARMPEntity* entity) { return Has(entity); });
}

bool ExtractionSelection::AttachedComesAlong(const Entity& candidate) const
{
    bool refers = false;
    bool hasAll = true;
    ForEachTarget(*candidate, [&](const ItemInfo&, const Target& target) {
        if (IsPart(*target))
            return;
        refers = true;
        hasAll = hasAll && Has(target.get());
    });
    return hasAll && (refers || StandsAlone(*candidate));
}

// What stands alone comes along by itself.
std::vector<QOBSharedHandle<KARMPEntity>> ExtractionSelection::Unrelated() const
{
    std::vector<Entity> unrelated;
    for (const Entity& entity : m_attached) {
        bool refers = IsPart(*entity) || !IsWanted(*entity) || Has(entity.get());
        if (!refers)
            ForEachTarget(*entity, [&refers](const ItemInfo&, const Target& target) {
                refers = refers || !IsPart(*target);
            });
        if (!refers)
            unrelated.push_back(entity);
    }
    return unrelated;
}

// Looks through joints, constraints, geometries and connectors, but not into bodies.
ExtractionSelection::Footprint ExtractionSelection::FootprintOf(const Entity& entity)
{
    Footprint footprint;
    std::unordered_set<const KARMPEntity*> passed{entity.get()};
    std::vector<Entity> pending{entity};
    const auto addBodiesOf = [&](const Entity& geometry) {
        for (const KARMPEntity* body : BodiesOf(geometry))
            if (passed.insert(body).second)
                footprint.bodies.push_back(body);
    };
    while (!pending.empty()) {
        const Entity current = std::move(pending.back());
        pending.pop_back();
        if (IsOneOf<KARMPGeometry, KARMPShape>(*current)) {
            addBodiesOf(current);
            continue;
        }
        ForEachTarget(*current, [&](const ItemInfo&, const Target& target) {
            if (!passed.insert(target.get()).second)
                return;
            if (IsOneOf<KARMPBody>(*target))
                footprint.bodies.push_back(target.get());
            else if (IsOneOf<KARMPVariable>(*target))
                footprint.variables.push_back(target.get());
            else if (IsOneOf<KARMPJoint, KARMPConstraint, KARMPGeometry>(*target))
                pending.push_back(target);
        });
    }
    return footprint;
}

// The constraints on a geometry are not what the geometry is about, and may be many.
const std::vector<const KARMPEntity*>& ExtractionSelection::BodiesOf(const Entity& geometry)
{
    const auto [found, isNew] = m_carriers.try_emplace(geometry.get());
    if (isNew)
        ForEachTarget(*geometry, [&bodies = found->second](const ItemInfo&, const Target& target) {
            if (IsOneOf<KARMPBody>(*target))
                bodies.push_back(target.get());
        });
    return found->second;
}

void ExtractionSelection::PutInOrder()
{
    ForEachEntityOf(m_world, [this](const Entity& entity) {
        if (Has(entity.get()))
            m_entities.push_back(entity);
    });
    // What the world does not list has no place in the extract.
    if (m_entities.size() == m_selected.size())
        return;
    m_selected.clear();
    for (const Entity& entity : m_entities)
        m_selected.insert(entity.get());
}

} // namespace karmp::documents
