// Random edits of a model, the same for one seed.
#pragma once

#include "EditTesting.h"

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace karmp::model {

/// Adds, links, unlinks, renames and deletes, entities of every class of the factory and joints in
/// one call; calls that are refused are edits too.
class RandomEdits
{
public:
    explicit RandomEdits(unsigned seed) : m_random(seed), m_classes(SoundClasses()) {}

    Model& Edited() { return m_model; }
    /// References to entities that were deleted.
    const RefList<KARMPEntity>& Deleted() const { return m_deleted; }
    std::size_t Done() const { return m_done; }

    void Step()
    {
        const std::size_t before = m_model.Problems().size();
        // As many are deleted as are added when there are some hundreds.
        const std::size_t kind = Below(m_entities.size() > 200 ? 16 : 12);
        if (kind < 3)
            Keep(m_model.Add(m_classes[Below(m_classes.size())], NewName()));
        else if (kind < 4)
            AddJoint();
        else if (kind < 8)
            m_model.Link(Any(), Any());
        else if (kind < 10)
            UnlinkAny();
        else if (kind < 11)
            m_model.Rename(Any(), NewName());
        else
            DeleteAny();
        m_done += m_model.Problems().size() == before ? 1 : 0;
        m_model.ClearProblems();
    }

private:
    // The classes of which a new entity has a document without a finding: a surface needs a stream,
    // a layer a relation. Outputs are in documents only where the environment says so.
    static const std::vector<std::string>& SoundClasses()
    {
        static const std::vector<std::string> sound = [] {
            std::vector<std::string> classes;
            for (const std::string& name : KARMPFactory::GetClassNames()) {
                Model model("Sample");
                if (name != "KARMPOutput" && model.Add(name, "sample") &&
                    model.Check(documents::CheckLevel::Form).items.empty())
                    classes.push_back(name);
            }
            return classes;
        }();
        return sound;
    }
    std::size_t Below(std::size_t bound) { return m_random() % bound; }
    std::string NewName() { return "e" + std::to_string(m_next++); }
    void Keep(const Ref<KARMPEntity>& entity)
    {
        if (entity)
            m_entities.push_back(entity);
    }
    Ref<KARMPEntity> Any()
    {
        return m_entities.empty() ? Ref<KARMPEntity>(m_model.Ground())
                                  : m_entities[Below(m_entities.size())];
    }
    void AddJoint()
    {
        const auto bodies = m_model.All<KARMPBody>();
        const auto child = m_model.Body(NewName());
        Keep(child);
        const auto& parent = bodies[Below(bodies.size())];
        Keep(m_model.Joint<KARMPRevolute>(NewName(), parent, child, {1.0, 0.0, 0.0}));
    }
    void UnlinkAny()
    {
        const Ref<KARMPEntity> entity = Any();
        std::vector<QOBSharedHandle<KARMPEntity>> targets;
        ForEachTarget(*entity,
                      [&](const ItemInfo&, const auto& target) { targets.push_back(target); });
        if (!targets.empty())
            m_model.Unlink(entity, Ref<KARMPEntity>(targets[Below(targets.size())]));
    }
    void DeleteAny()
    {
        const Ref<KARMPEntity> doomed = Any();
        const auto deletion = m_model.Delete(doomed, {.withShort = Below(2) == 0});
        m_deleted.insert(m_deleted.end(), deletion.gone.begin(), deletion.gone.end());
        std::erase_if(m_entities, [](const Ref<KARMPEntity>& entity) { return !entity; });
    }

    std::mt19937 m_random;
    const std::vector<std::string>& m_classes;
    Model m_model{"Random"};
    RefList<KARMPEntity> m_entities;
    RefList<KARMPEntity> m_deleted;
    std::size_t m_next = 0;
    std::size_t m_done = 0;
};

/// Does random edits with looks at the model in between; the first fault that is found, empty
/// without one.
inline std::string FaultOfRandomEdits(unsigned seed, std::size_t steps, std::size_t looks)
{
    RandomEdits edits(seed);
    for (std::size_t step = 1; step <= steps; ++step) {
        edits.Step();
        if (step % (steps / looks) != 0)
            continue;
        std::string fault = BrokenLinks(edits.Edited());
        fault += Lines(edits.Edited().Check(documents::CheckLevel::Form));
        for (const Ref<KARMPEntity>& deleted : edits.Deleted())
            if (deleted)
                fault += "a reference to a deleted entity is true\n";
        if (!fault.empty())
            return "seed " + std::to_string(seed) + ", step " + std::to_string(step) + ":\n" +
                   fault;
    }
    return edits.Done() > steps / 4 ? std::string() : "most edits are refused";
}

} // namespace karmp::model
