// The trees that entities make by their lists of children.
#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPIdentifiers.h"
#include "KARMPNodeQueries.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace karmp::documents {

/// Finds entities that are above themselves in a tree, and those with two fathers where an entity
/// has one: Note for all entities first, then EndNotes, then the questions. In time and memory
/// linear in the lists.
class EntityTrees
{
public:
    explicit EntityTrees(Identifiers& identifiers) : m_identifiers(identifiers) {}

    /// Keeps the children of an entity, which has the number `father`, and gives their numbers.
    std::vector<std::uint32_t> Note(std::uint32_t father, const KARMPDocumentReader& entity);
    /// Ends the notes: finds the cycles.
    void EndNotes();

    /// Calls with each list of children, each reference in it, and the numbers of the reference's
    /// target and of the tree.
    template <class Visit>
    void ForEachChild(const KARMPDeserializer& entity, Visit visit) const
    {
        for (std::size_t tree = 0; tree < Count; ++tree)
            for (const KARMPDeserializer* item : ItemsOf(entity, Lists[tree]))
                if (const auto child = m_identifiers.Of(*item))
                    visit(*First(entity, Lists[tree]), *item, *child, tree);
    }
    /// True for the link from a father to a child that closes a cycle.
    bool IsCycle(std::size_t tree, std::uint32_t father, std::uint32_t child) const;
    /// The element of the father that an entity had before this one; null when it is the first, and
    /// where fathers are not single. Of an entity in a cycle no father is another one.
    const KARMPDocumentReader* OtherFather(std::size_t tree, std::uint32_t father,
                                           std::uint32_t child) const;

private:
    static constexpr std::size_t Count = 6;
    /// The lists of children; of the first two, an entity is in one list only.
    static constexpr std::array<std::wstring_view, Count> Lists{
        L"ChildrenBodies",     L"AggregatedElements", L"ImpactedChildrenBodies",
        L"ChildrenParameters", L"ChildrenStates",     L"ChildrenOutputs"};
    static constexpr std::size_t SingleFathers = 2;

    struct Father
    {
        std::uint32_t number;
        const KARMPDocumentReader* node;
    };

    void FindCycles(std::size_t tree);

    Identifiers& m_identifiers;
    /// The children by their fathers, for each kind of tree, and all fathers in document order.
    std::array<std::unordered_map<std::uint32_t, std::vector<std::uint32_t>>, Count> m_children;
    std::vector<std::uint32_t> m_owners;
    std::array<std::unordered_map<std::uint32_t, Father>, SingleFathers> m_firstFathers;
    /// The links that close a cycle, and the entities that are in one.
    std::set<std::tuple<std::size_t, std::uint32_t, std::uint32_t>> m_cycles;
    std::array<std::unordered_set<std::uint32_t>, Count> m_inCycles;
};

} // namespace karmp::documents
