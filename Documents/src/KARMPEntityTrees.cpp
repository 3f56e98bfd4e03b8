#include "KARMPEntityTrees.h"

#include <algorithm>
#include <limits>

namespace karmp::documents {

std::vector<std::uint32_t> EntityTrees::Note(std::uint32_t father,
                                             const KARMPDocumentReader& entity)
{
    std::vector<std::uint32_t> children;
    ForEachChild(entity, [&](const auto&, const auto&, std::uint32_t child, std::size_t tree) {
        children.push_back(child);
        m_children[tree][father].push_back(child);
        if (tree < SingleFathers)
            m_firstFathers[tree].try_emplace(child, Father{father, &entity});
    });
    if (!children.empty())
        m_owners.push_back(father);
    return children;
}

void EntityTrees::EndNotes()
{
    for (std::size_t tree = 0; tree < Count; ++tree)
        FindCycles(tree);
}

// Walks through a tree. A link to an entity that is still open closes a cycle, and the open
// entities from there on are in it.
void EntityTrees::FindCycles(std::size_t tree)
{
    constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
    struct Step
    {
        std::uint32_t number;
        std::size_t next;
        std::size_t reached; // the first open entity that a link from here or below leads to
    };
    const auto& children = m_children[tree];
    std::unordered_map<std::uint32_t, std::size_t> places; // among the open ones; none when done
    std::vector<Step> open;
    const auto enter = [&](std::uint32_t number) {
        if (!places.try_emplace(number, open.size()).second)
            return false;
        open.push_back({number, 0, none});
        return true;
    };
    for (const std::uint32_t owner : m_owners) {
        enter(owner);
        while (!open.empty()) {
            Step& step = open.back();
            const auto found = children.find(step.number);
            if (found != children.end() && step.next < found->second.size()) {
                const std::uint32_t child = found->second[step.next++];
                if (enter(child) || places[child] == none)
                    continue;
                m_cycles.insert({tree, step.number, child});
                step.reached = std::min(step.reached, places[child]);
                continue;
            }
            const Step done = step;
            open.pop_back();
            places[done.number] = none;
            if (done.reached == none)
                continue;
            m_inCycles[tree].insert(done.number);
            if (done.reached < open.size())
                open.back().reached = std::min(open.back().reached, done.reached);
        }
    }
}

bool EntityTrees::IsCycle(std::size_t tree, std::uint32_t father, std::uint32_t child) const
{
    return m_cycles.count({tree, father, child}) != 0;
}

const KARMPDocumentReader* EntityTrees::OtherFather(std::size_t tree, std::uint32_t father,
                                                    std::uint32_t child) const
{
    if (tree >= SingleFathers || m_inCycles[tree].count(child) != 0)
        return nullptr;
    const auto found = m_firstFathers[tree].find(child);
    return found != m_firstFathers[tree].end() && found->second.number != father
               ? found->second.node
               : nullptr;
}

} // namespace karmp::documents
