#pragma once

#include "KARMPEntityMatching.h"
#include "KARMPWorldDifference.h"
#include "KARMPWorldGraph.h"

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <vector>

namespace karmp::documents {

/// A target of a link: the entity, what stands for it in both worlds, and the word of the entry.
struct LinkedEntity
{
    QOBSharedHandle<KARMPEntity> entity;
    std::uint64_t key;
    std::wstring_view word;
};
using LinkedEntities = std::vector<LinkedEntity>;

/// One end of a link that was lost or gained, by the keys of the entities.
struct LinkEnd
{
    bool isGained;
    std::uint64_t holder;
    std::wstring_view item;
    std::uint64_t target;

    bool operator<(const LinkEnd& other) const
    {
        return std::tie(isGained, holder, item, target) <
               std::tie(other.isGained, other.holder, other.item, other.target);
    }
};

/// A difference, with the link that it tells of when that was lost or gained.
struct NotedDifference
{
    Difference difference;
    std::optional<LinkEnd> link;
    /// The item of the target that refers back.
    std::wstring_view otherSide;
    /// The link is that of a reference or of a list in order.
    bool isPreferred = false;
    /// The target and its world.
    EntityNumber target = NoEntity;
    std::size_t world = 0;
};

/// Compares the links of corresponding entities.
class LinkComparison
{
public:
    /// All arguments must outlive the comparison.
    LinkComparison(const std::array<WorldGraph, 2>& graphs, const EntityMatching& matching)
        : m_graphs(graphs), m_matching(matching)
    {}

    /// Appends what two entities are linked to in another way.
    void Compare(const WorldGraph::Entity& before, const WorldGraph::Entity& after,
                 std::vector<NotedDifference>& noted);
    /// True when the difference tells of a link whose other end tells of it. To be asked when all
    /// entities were compared.
    bool IsToldElsewhere(const NotedDifference& noted) const;
    /// A number that corresponding entities have in common and no others. Entities that a world
    /// does not list correspond by class and name.
    std::uint64_t KeyOf(std::size_t world, const KARMPEntity& entity) const;

private:
    void CompareReference(const Difference& common, const ItemInfo& item,
                          const LinkedEntities& before, const LinkedEntities& after);
    void CompareReferences(const Difference& common, const ItemInfo& item,
                           const LinkedEntities& before, const LinkedEntities& after);
    void NoteLink(const Difference& common, const ItemInfo& item, const LinkedEntity& target,
                  std::size_t world);
    void Note(Difference difference) { m_noted->push_back({std::move(difference), {}, {}}); }
    LinkedEntities TargetsOf(const WorldGraph::Entity& entity, const ItemInfo& item,
                             std::size_t world) const;
    bool IsToldBy(std::wstring_view otherSide, const NotedDifference& noted) const;
    bool HoldsLink(std::wstring_view otherSide, const NotedDifference& noted) const;

    const std::array<WorldGraph, 2>& m_graphs;
    const EntityMatching& m_matching;
    std::vector<NotedDifference>* m_noted = nullptr;
    /// The key of the entity whose links are compared.
    std::uint64_t m_holder = 0;
    /// The ends of links that are told as one change, those of other references and lists in order,
    /// and those of other lists: of two ends of a link the one of the earlier set tells of it.
    std::set<LinkEnd> m_relinked;
    std::set<LinkEnd> m_preferred;
    std::set<LinkEnd> m_ends;
};

} // namespace karmp::documents
