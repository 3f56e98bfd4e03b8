// Entities are matched from what is certain to what is likely. Whenever some were matched, their
// neighbours are looked at first: an entity of which a matched pair has one of its class and name
// by the same item corresponds. Where names do not tell, colours do: numbers that belong to ever
// wider surroundings of an entity (the refinement by Weisfeiler and Leman, up to a fixed width).
#include "KARMPEntityMatching.h"

#include "KARMPEntityContents.h"
#include "KARMPKeyedEntities.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace karmp::documents {

namespace {

// The width up to which surroundings are compared.
constexpr int MostRounds = 16;
// Candidates that are looked at for one entity, so that large groups of alike ones stay linear.
constexpr std::size_t MostCandidates = 64;
// Sizes of groups of alike entities that are told apart one by one, and how often: a pair of such a
// symmetry tells more about the rest than another pair by chance.
constexpr std::size_t LargestSymmetry = 8;
constexpr int MostSymmetries = 16;

// An entity keeps its class or its name while the other one changes; but its family never changes.
bool AreAkin(const WorldGraph::Entity& before, const WorldGraph::Entity& after)
{
    return before.family == after.family &&
           (before.items == after.items ||
            before.handle->getEntityName() == after.handle->getEntityName());
}

class Matcher
{
public:
    Matcher(const WorldGraph& before, const WorldGraph& after, const DifferenceOptions& options)
        : m_options(options), m_sides{Side(before), Side(after)}
    {}

    EntityMatching Match();

private:
    struct Side
    {
        explicit Side(const WorldGraph& worldGraph);

        const WorldGraph& graph;
        std::vector<EntityNumber> partners;
        /// Belongs to the links of an entity to matched ones; 0 without any.
        std::vector<std::uint64_t> anchors;
        std::vector<std::uint64_t> colours;
        std::vector<EntityNumber> unmatched;
        std::unordered_map<EntityNumber, std::uint64_t> contents;
    };
    using Group = std::span<const Keyed>;

    bool IsDone() const { return m_sides[0].unmatched.empty() || m_sides[1].unmatched.empty(); }
    void Pair(EntityNumber before, EntityNumber after);
    void DropMatched();
    void MatchIdentifiers();
    void MatchGlobals();
    void MatchNeighbours();
    void MatchNeighboursOf(EntityNumber before, EntityNumber after);
    bool MatchNames();
    bool MatchAnchored();
    bool MatchContents();
    bool MatchColours();
    bool MatchAlike();
    bool MatchLikely(bool byName);
    bool MatchRest();
    bool MatchRenamed();

    template <class KeyOf>
    std::array<KeyedEntities, 2> Keys(KeyOf keyOf);
    template <class KeyOf>
    bool MatchUnique(KeyOf keyOf);
    bool PairGroup(Group before, Group after, std::size_t most);
    bool HasUnmatchedNeighbours(Group group) const;
    void Refine(Side& side) const;
    std::uint64_t ContentOf(Side& side, EntityNumber number) const;
    std::vector<EntityNumber> SortedByNumbers(Side& side, Group group) const;

    static std::uint64_t TitleOf(const Side& side, EntityNumber number)
    {
        return side.graph.At(number).title;
    }
    static std::uint64_t ClassOf(const Side& side, EntityNumber number)
    {
        return side.graph.At(number).items->Hash();
    }
    static bool IsNamed(const Side& side, EntityNumber number)
    {
        return side.graph.At(number).isNamed;
    }

    const DifferenceOptions& m_options;
    std::array<Side, 2> m_sides;
    /// Pairs whose neighbours have not been looked at, by the entity of the first world.
    std::vector<EntityNumber> m_fresh;
    int m_brokenSymmetries = 0;
    /// At least half of the entities, globals apart, correspond by their identifiers.
    bool m_isOfOneOrigin = false;
};

Matcher::Side::Side(const WorldGraph& worldGraph)
    : graph(worldGraph),
      partners(graph.Count(), NoEntity),
      anchors(graph.Count(), 0),
      colours(graph.Count(), 0)
{
    for (EntityNumber number = 0; number < graph.Count(); ++number)
        unmatched.push_back(number);
}

EntityMatching Matcher::Match()
{
    if (m_options.byIdentifier)
        MatchIdentifiers();
    MatchGlobals();
    bool goesOn = true;
    while (goesOn) {
        MatchNeighbours();
        DropMatched();
        goesOn =
            !IsDone() && (MatchNames() || MatchAnchored() || MatchContents() || MatchColours() ||
                          MatchAlike() || MatchLikely(true) || MatchRest() || MatchRenamed());
    }
    return {std::move(m_sides[0].partners), std::move(m_sides[1].partners)};
}

void Matcher::Pair(EntityNumber before, EntityNumber after)
{
    m_sides[0].partners[before] = after;
    m_sides[1].partners[after] = before;
    m_fresh.push_back(before);
    // The pair is known by its entity in the first world.
    for (Side& side : m_sides) {
        const EntityNumber number = &side == &m_sides[0] ? before : after;
        for (const WorldGraph::Link& link : side.graph.LinksOf(number))
            side.anchors[link.target] += Mix(link.label, before);
    }
}

void Matcher::DropMatched()
{
    for (Side& side : m_sides)
        std::erase_if(
            side.unmatched,
            [&side](EntityNumber number) { return side.partners[number] != NoEntity; });
}

void Matcher::MatchIdentifiers()
{
    const auto index = [](const WorldGraph& graph) {
        std::unordered_map<std::wstring_view, EntityNumber> numbers;
        for (EntityNumber number = 0; number < graph.Count(); ++number) {
            const auto [entry, isNew] = numbers.emplace(graph.At(number).identifier, number);
            if (!isNew)
                entry->second = NoEntity;
        }
        return numbers;
    };
    const WorldGraph& before = m_sides[0].graph;
    const WorldGraph& after = m_sides[1].graph;
    const auto known = index(before);
    const auto others = index(after);
    // The globals of all documents have the same identifiers.
    std::unordered_set<EntityNumber> globals;
    for (const auto& global : before.Globals())
        globals.insert(before.NumberOf(global.get()));
    globals.erase(NoEntity);
    std::size_t count = 0;
    for (EntityNumber number = 0; number < after.Count(); ++number) {
        const WorldGraph::Entity& entity = after.At(number);
        const auto found = known.find(entity.identifier);
        const bool isOne = found != known.end() && found->second != NoEntity &&
                           others.at(entity.identifier) == number;
        if (!isOne || !AreAkin(before.At(found->second), entity))
            continue;
        Pair(found->second, number);
        count += globals.count(found->second) != 0 ? 0 : 1;
    }
    const std::size_t fewest = std::min(before.Count(), after.Count());
    m_isOfOneOrigin = 2 * count + globals.size() >= fewest;
}

void Matcher::MatchGlobals()
{
    const auto& before = m_sides[0].graph.Globals();
    const auto& after = m_sides[1].graph.Globals();
    for (std::size_t i = 0; i < before.size(); ++i) {
        const EntityNumber first = m_sides[0].graph.NumberOf(before[i].get());
        const EntityNumber second = m_sides[1].graph.NumberOf(after[i].get());
        const bool areFree = first != NoEntity && second != NoEntity &&
                             m_sides[0].partners[first] == NoEntity &&
                             m_sides[1].partners[second] == NoEntity;
        if (areFree && ClassOf(m_sides[0], first) == ClassOf(m_sides[1], second))
            Pair(first, second);
    }
}

void Matcher::MatchNeighbours()
{
    while (!m_fresh.empty()) {
        const EntityNumber before = m_fresh.back();
        m_fresh.pop_back();
        MatchNeighboursOf(before, m_sides[0].partners[before]);
    }
}

// An entity without a name has to have all its links to matched entities in common. Where that
// leaves several, their positions in lists tell.
void Matcher::MatchNeighboursOf(EntityNumber before, EntityNumber after)
{
    enum class Telling { Name, Anchors, Positions };
    for (const Telling telling : {Telling::Name, Telling::Anchors, Telling::Positions}) {
        std::array<KeyedEntities, 2> keyed;
        for (std::size_t i = 0; i < 2; ++i) {
            const Side& side = m_sides[i];
            for (const WorldGraph::Link& link : side.graph.LinksOf(i == 0 ? before : after)) {
                const EntityNumber target = link.target;
                const bool byName = telling == Telling::Name;
                if (side.partners[target] != NoEntity || (byName && !IsNamed(side, target)))
                    continue;
                const bool isPlaced = telling == Telling::Positions;
                std::uint64_t key =
                    Mix(isPlaced ? link.PlacedLabel() : link.label, TitleOf(side, target));
                if (!byName)
                    key = Mix(key, side.anchors[target]);
                keyed[i].push_back({key, target});
            }
            Arrange(keyed[i]);
        }
        ForEachGroup(keyed[0], keyed[1], [this](Group first, Group second) {
            const bool areFree = m_sides[0].partners[first[0].number] == NoEntity &&
                                 m_sides[1].partners[second[0].number] == NoEntity;
            if (first.size() == 1 && second.size() == 1 && areFree)
                Pair(first[0].number, second[0].number);
        });
    }
}

/// The keys of all unmatched entities; `keyOf` gives 0 for one to leave out.
template <class KeyOf>
std::array<KeyedEntities, 2> Matcher::Keys(KeyOf keyOf)
{
    std::array<KeyedEntities, 2> keyed;
    for (std::size_t i = 0; i < 2; ++i) {
        for (const EntityNumber number : m_sides[i].unmatched)
            if (const std::uint64_t key = keyOf(m_sides[i], number); key != 0)
                keyed[i].push_back({key, number});
        Arrange(keyed[i]);
    }
    return keyed;
}

/// Matches the entities of which each world has one by a key.
template <class KeyOf>
bool Matcher::MatchUnique(KeyOf keyOf)
{
    const auto keyed = Keys(keyOf);
    bool isAny = false;
    ForEachGroup(keyed[0], keyed[1], [&](Group before, Group after) {
        if (before.size() != 1 || after.size() != 1)
            return;
        Pair(before[0].number, after[0].number);
        isAny = true;
    });
    return isAny;
}

bool Matcher::MatchNames()
{
    return MatchUnique([](const Side& side, EntityNumber number) {
        return IsNamed(side, number) ? TitleOf(side, number) : 0;
    });
}

bool Matcher::MatchAnchored()
{
    return MatchUnique([](const Side& side, EntityNumber number) {
        return side.anchors[number] != 0 ? Mix(TitleOf(side, number), side.anchors[number]) : 0;
    });
}

// Of a class and name, and with the same matched neighbours, one has this content in either world.
bool Matcher::MatchContents()
{
    return MatchUnique([this](Side& side, EntityNumber number) {
        return Mix(Mix(TitleOf(side, number), side.anchors[number]), ContentOf(side, number));
    });
}

// Matched neighbours are in the anchors.
void Matcher::Refine(Side& side) const
{
    std::vector<std::uint64_t> refined(side.unmatched.size());
    for (std::size_t i = 0; i < refined.size(); ++i) {
        const EntityNumber number = side.unmatched[i];
        std::uint64_t around = side.anchors[number];
        for (const WorldGraph::Link& link : side.graph.LinksOf(number))
            if (side.partners[link.target] == NoEntity)
                around += Mix(link.PlacedLabel(), side.colours[link.target]);
        refined[i] = Mix(side.colours[number], around);
    }
    for (std::size_t i = 0; i < refined.size(); ++i)
        side.colours[side.unmatched[i]] = refined[i];
}

// What is alike in the nearer surroundings is matched first: a change spoils those that reach it.
bool Matcher::MatchColours()
{
    for (Side& side : m_sides)
        for (const EntityNumber number : side.unmatched)
            side.colours[number] = TitleOf(side, number);
    bool isAny = false;
    for (int round = 0; round < MostRounds && !IsDone(); ++round) {
        for (Side& side : m_sides)
            Refine(side);
        const bool isMatched =
            MatchUnique([](const Side& side, EntityNumber number) { return side.colours[number]; });
        if (!isMatched)
            continue;
        isAny = true;
        MatchNeighbours();
        DropMatched();
    }
    return isAny;
}

std::uint64_t Matcher::ContentOf(Side& side, EntityNumber number) const
{
    const auto [entry, isNew] = side.contents.emplace(number, 0);
    if (isNew)
        entry->second = HashOfContent(side.graph.At(number), m_options);
    return entry->second;
}

// Pairs entities of equal surroundings, at most `most`, in the order of their numbers. What was
// matched on the way tells some of them apart.
bool Matcher::PairGroup(Group before, Group after, std::size_t most)
{
    const auto left = SortedByNumbers(m_sides[0], before);
    const auto right = SortedByNumbers(m_sides[1], after);
    std::size_t first = 0;
    std::size_t count = 0;
    for (const EntityNumber number : left) {
        if (count == most)
            break;
        if (m_sides[0].partners[number] != NoEntity)
            continue;
        while (first < right.size() && m_sides[1].partners[right[first]] != NoEntity)
            ++first;
        const auto end = right.begin() + static_cast<std::ptrdiff_t>(
                                             std::min(right.size(), first + MostCandidates));
        const auto found = std::find_if(
            right.begin() + static_cast<std::ptrdiff_t>(first), end, [&](EntityNumber candidate) {
                return m_sides[1].partners[candidate] == NoEntity &&
                       m_sides[1].anchors[candidate] == m_sides[0].anchors[number];
            });
        if (found == end)
            continue;
        Pair(number, *found);
        ++count;
        MatchNeighbours();
    }
    return count > 0;
}

bool Matcher::HasUnmatchedNeighbours(Group group) const
{
    const auto links = m_sides[0].graph.LinksOf(group.front().number);
    return std::any_of(links.begin(), links.end(), [this](const WorldGraph::Link& link) {
        return m_sides[0].partners[link.target] == NoEntity;
    });
}

// Entities whose surroundings are equal as far as they are compared. Equal content decides; then
// any one is as good as another.
bool Matcher::MatchAlike()
{
    const auto byContent = [this](Side& side, EntityNumber number) {
        return Mix(side.colours[number], ContentOf(side, number));
    };
    if (MatchUnique(byContent))
        return true;
    const auto byColour = [](const Side& side, EntityNumber number) {
        return side.colours[number];
    };
    // The smaller groups are more certain, and tell what is around them apart.
    const auto pairEqual = [&](const std::array<KeyedEntities, 2>& keyed, bool needsSameCount) {
        std::vector<std::pair<Group, Group>> groups;
        ForEachGroup(keyed[0], keyed[1], [&](Group before, Group after) {
            if (!needsSameCount || before.size() == after.size())
                groups.emplace_back(before, after);
        });
        std::stable_sort(groups.begin(), groups.end(), [](const auto& left, const auto& right) {
            return left.first.size() < right.first.size();
        });
        bool isAny = false;
        for (const auto& [before, after] : groups) {
            const bool isSymmetry = before.size() <= LargestSymmetry &&
                                    m_brokenSymmetries < MostSymmetries &&
                                    HasUnmatchedNeighbours(before);
            isAny = PairGroup(before, after, isSymmetry ? 1 : before.size()) || isAny;
            if (isSymmetry && isAny) {
                ++m_brokenSymmetries;
                break;
            }
        }
        return isAny;
    };
    return pairEqual(Keys(byContent), true) || pairEqual(Keys(byContent), false) ||
           pairEqual(Keys(byColour), true);
}

// Pairs what shares most links to matched entities: by class and name, or by class alone where
// at least half of the links are shared.
bool Matcher::MatchLikely(bool byName)
{
    std::map<std::pair<EntityNumber, EntityNumber>, std::uint32_t> shared;
    const auto keyOf = [byName](const Side& side, const WorldGraph::Link& link) {
        return Mix(link.label, byName ? TitleOf(side, link.target) : ClassOf(side, link.target));
    };
    const auto gather = [&](const Side& side, EntityNumber number) {
        KeyedEntities keyed;
        for (const WorldGraph::Link& link : side.graph.LinksOf(number))
            if (side.partners[link.target] == NoEntity)
                keyed.push_back({keyOf(side, link), link.target});
        Arrange(keyed);
        return keyed;
    };
    for (EntityNumber number = 0; number < m_sides[0].graph.Count(); ++number) {
        const EntityNumber partner = m_sides[0].partners[number];
        if (partner == NoEntity)
            continue;
        const KeyedEntities first = gather(m_sides[0], number);
        if (first.empty())
            continue;
        ForEachGroup(first, gather(m_sides[1], partner), [&](Group before, Group after) {
            if (before.size() * after.size() > MostCandidates)
                return;
            for (const Keyed& left : before)
                for (const Keyed& right : after)
                    ++shared[{left.number, right.number}];
        });
    }
    const auto anchoredLinks = [](const Side& side, EntityNumber number) {
        const auto links = side.graph.LinksOf(number);
        return static_cast<std::uint32_t>(
            std::count_if(links.begin(), links.end(), [&side](const WorldGraph::Link& link) {
                return side.partners[link.target] != NoEntity;
            }));
    };
    // What decides between pairs that share as many links must not depend on the order of entities.
    struct LikelyPair
    {
        std::uint32_t count;
        bool hasOneContent;
        bool hasOneColour;
        std::pair<std::uint64_t, std::uint64_t> contents;
        EntityNumber before;
        EntityNumber after;
    };
    std::vector<LikelyPair> likely;
    for (const auto& [pair, count] : shared) {
        const std::uint32_t most =
            std::max(anchoredLinks(m_sides[0], pair.first), anchoredLinks(m_sides[1], pair.second));
        if (!byName && 2 * count < most)
            continue;
        const std::pair contents{ContentOf(m_sides[0], pair.first),
                                 ContentOf(m_sides[1], pair.second)};
        likely.push_back({count, contents.first == contents.second,
                          m_sides[0].colours[pair.first] == m_sides[1].colours[pair.second],
                          contents, pair.first, pair.second});
    }
    std::stable_sort(
        likely.begin(), likely.end(), [](const LikelyPair& left, const LikelyPair& right) {
            return std::tie(right.count, right.hasOneContent, right.hasOneColour, left.contents) <
                   std::tie(left.count, left.hasOneContent, left.hasOneColour, right.contents);
        });
    bool isAny = false;
    for (const LikelyPair& pair : likely) {
        if (m_sides[0].partners[pair.before] != NoEntity ||
            m_sides[1].partners[pair.after] != NoEntity)
            continue;
        Pair(pair.before, pair.after);
        isAny = true;
    }
    return isAny;
}

std::vector<EntityNumber> Matcher::SortedByNumbers(Side& side, Group group) const
{
    std::vector<std::tuple<std::vector<double>, std::uint64_t, EntityNumber>> keyed;
    keyed.reserve(group.size());
    for (const Keyed& entity : group) {
        keyed.emplace_back(NumbersOf(side.graph.At(entity.number)), ContentOf(side, entity.number),
                           entity.number);
        // A NaN has no place among numbers.
        auto& values = std::get<0>(keyed.back());
        std::replace_if(
            values.begin(), values.end(), [](double value) { return std::isnan(value); }, 0.0);
    }
    std::sort(keyed.begin(), keyed.end());
    std::vector<EntityNumber> sorted;
    sorted.reserve(keyed.size());
    for (const auto& entry : keyed)
        sorted.push_back(std::get<2>(entry));
    return sorted;
}

// What is left of a class and a name, in the order of its numbers; entities without a name only
// when no link tells that they are others.
bool Matcher::MatchRest()
{
    const auto keyed = Keys([](const Side& side, EntityNumber number) {
        const std::uint64_t title = TitleOf(side, number);
        return IsNamed(side, number) ? title : Mix(title, side.anchors[number]);
    });
    bool isAny = false;
    ForEachGroup(keyed[0], keyed[1], [&](Group before, Group after) {
        const auto left = SortedByNumbers(m_sides[0], before);
        const auto right = SortedByNumbers(m_sides[1], after);
        for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i)
            Pair(left[i], right[i]);
        isAny = true;
    });
    return isAny;
}

// In worlds of one origin a renamed entity has kept its identifier.
bool Matcher::MatchRenamed()
{
    if (m_isOfOneOrigin)
        return false;
    return MatchLikely(false) || MatchUnique([this](Side& side, EntityNumber number) {
               return Mix(side.anchors[number], ContentOf(side, number));
           });
}

} // namespace

EntityMatching MatchEntities(const WorldGraph& before, const WorldGraph& after,
                             const DifferenceOptions& options)
{
    return Matcher(before, after, options).Match();
}

} // namespace karmp::documents
