// Which bodies of a world a graph shows, and which joints close its loops.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

class KARMPBody;
class KARMPJoint;
class KARMPWorld;

namespace karmp::tool {

/// The bodies that are nearest to some of them, counted in active joints, and the joints that close
/// a loop when the bodies are joined from there outwards.
class GraphPart
{
public:
    /// No more bodies than `most` and none further away than `reach` joints. From `around`, or from
    /// the ground: the global body and all fixed ones, and then from the bodies that do not hang on
    /// it.
    GraphPart(const KARMPWorld& world, const KARMPBody* around, std::size_t reach,
              std::size_t most);

    bool Has(const KARMPBody& body) const { return m_bodies.count(&body) != 0; }
    bool ClosesLoop(const KARMPJoint& joint) const { return m_closing.count(&joint) != 0; }
    std::size_t BodyCount() const { return m_bodies.size(); }
    std::size_t LoopCount() const { return m_closing.size(); }

private:
    void FindLoops(const std::vector<const KARMPJoint*>& joints);

    std::unordered_set<const KARMPBody*> m_bodies;
    /// The joints by which the bodies were found.
    std::unordered_set<const KARMPJoint*> m_tree;
    std::unordered_set<const KARMPJoint*> m_closing;
};

} // namespace karmp::tool
