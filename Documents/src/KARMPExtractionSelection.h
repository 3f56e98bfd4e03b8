#pragma once

#include "KARMPWorldExtraction.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace karmp::documents {

/// The name of the element of an entity's family, whatever its class record tells; empty for an
/// entity of no family.
std::wstring_view FamilyElementOf(const KARMPEntity& entity);

/// Which entities of a world an extract has. Joints, constraints, geometries and variables are
/// found from the bodies by their links, and then by links to which no other one leads back; the
/// further families are looked through as a whole.
class ExtractionSelection
{
public:
    ExtractionSelection(const KARMPWorld& world,
                        const std::vector<QOBSharedHandle<KARMPBody>>& bodies,
                        const ExtractionOptions& options);

    /// All entities of a world.
    explicit ExtractionSelection(const KARMPWorld& world);

    bool Has(const KARMPEntity* entity) const { return m_selected.count(entity) != 0; }
    /// The selected entities in the order of documents.
    const std::vector<QOBSharedHandle<KARMPEntity>>& Entities() const { return m_entities; }
    /// The entities of the further families, taken along or not, and of those that were not asked
    /// for.
    const std::vector<QOBSharedHandle<KARMPEntity>>& Attached() const { return m_attached; }
    /// The joints, constraints, geometries and shapes that have to do with the selected entities
    /// and do not come along, in the order of documents.
    const std::vector<QOBSharedHandle<KARMPEntity>>& Waiting() const { return m_waiting; }
    /// Extraction::unrelated.
    std::vector<QOBSharedHandle<KARMPEntity>> Unrelated() const;

private:
    using Entity = QOBSharedHandle<KARMPEntity>;
    /// What an entity is about.
    struct Footprint
    {
        std::vector<const KARMPEntity*> bodies;
        std::vector<const KARMPEntity*> variables;
    };

    void CollectAttached();
    void SelectBodies(const std::vector<QOBSharedHandle<KARMPBody>>& bodies, int reach);
    /// Selects an entity and makes those that are linked to it candidates.
    void Select(const Entity& entity);
    bool IsCarrier(const KARMPEntity& target) const;
    /// Selects what comes along until nothing more does.
    void SelectCandidates();
    bool AddOneSided();
    void KeepWaiting();
    bool ComesAlong(const Entity& candidate);
    bool AttachedComesAlong(const Entity& candidate) const;
    Footprint FootprintOf(const Entity& entity);
    const std::vector<const KARMPEntity*>& BodiesOf(const Entity& geometry);
    bool IsWanted(const KARMPEntity& entity) const;
    void PutInOrder();

    const KARMPWorld& m_world;
    const ExtractionOptions m_options;
    std::unordered_set<const KARMPEntity*> m_selected;
    std::unordered_set<const KARMPEntity*> m_known;
    /// The bodies of geometries and shapes that were asked for.
    std::unordered_map<const KARMPEntity*, std::vector<const KARMPEntity*>> m_carriers;
    std::vector<Entity> m_candidates;
    std::vector<Entity> m_attached;
    std::vector<Entity> m_waiting;
    std::vector<Entity> m_entities;
};

/// The extract of the selected entities.
Extraction Extract(const KARMPWorld& world, const ExtractionSelection& selection);

} // namespace karmp::documents
