#include "KARMPWorldDifference.h"

#include "KARMPEntityContents.h"
#include "KARMPEntityElement.h"
#include "KARMPEntityMatching.h"
#include "KARMPWorld.h"
#include "KARMPWorldGraph.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace karmp::documents {

namespace {

using Handle = QOBSharedHandle<KARMPEntity>;
using Handles = std::vector<Handle>;
using Quantity = KARMPPhysicalQuantity;

constexpr std::wstring_view PositionPath = L"Position";

/// A target of a link: the entity, what stands for it in both worlds, and the word of the entry.
struct LinkedEntity
{
    Handle entity;
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

    auto operator<=>(const LinkEnd&) const = default;
};

class WorldComparison
{
public:
    WorldComparison(const KARMPWorld& before, const KARMPWorld& after,
                    const DifferenceOptions& options)
        : m_options(options),
          m_worlds{before, after},
          m_graphs{WorldGraph(before), WorldGraph(after)},
          m_matching(MatchEntities(m_graphs[0], m_graphs[1], options))
    {}

    std::vector<Difference> Run();

private:
    /// A difference with the link that it tells of.
    struct Noted
    {
        Difference difference;
        std::optional<LinkEnd> link;
        std::wstring_view otherSide;
        bool isPreferred = false;
        EntityNumber target = NoEntity;
        std::size_t world = 0;
    };

    void CompareSettings();
    void CompareGlobals();
    void NoteSetting(const wchar_t* name, Quantity::Enum quantity, ItemData before, ItemData after);
    void CompareEntities();
    void ComparePair(EntityNumber before, EntityNumber after);
    void CompareValues(const WorldGraph::Entity& before, const WorldGraph::Entity& after);
    void CompareValue(const WorldGraph::Entity& before, const WorldGraph::Entity& after,
                      const ItemInfo& item, const ItemInfo& other);
    void CompareLinks(const WorldGraph::Entity& before, const WorldGraph::Entity& after,
                      std::uint64_t holder);
    void CompareReference(const Difference& common, const ItemInfo& item, std::uint64_t holder,
                          const LinkedEntities& before, const LinkedEntities& after);
    void CompareReferences(const Difference& common, const ItemInfo& item, std::uint64_t holder,
                           const LinkedEntities& before, const LinkedEntities& after);
    void CompareElements(const WorldGraph::Entity& before, const WorldGraph::Entity& after);
    void NoteLink(const Difference& common, const ItemInfo& item, std::uint64_t holder,
                  const LinkedEntity& target, std::size_t world);
    void Note(Difference difference) { m_noted.push_back({std::move(difference), {}, {}}); }

    LinkedEntities TargetsOf(const WorldGraph::Entity& entity, const ItemInfo& item,
                             std::size_t world) const;
    std::uint64_t KeyOf(std::size_t world, const KARMPEntity& entity) const;
    bool AreIdentifiersSame(const std::wstring& before, const std::wstring& after);
    bool IsToldElsewhere(const Noted& noted) const;
    bool HoldsLink(const Noted& noted) const;

    const DifferenceOptions& m_options;
    std::array<std::reference_wrapper<const KARMPWorld>, 2> m_worlds;
    std::array<WorldGraph, 2> m_graphs;
    EntityMatching m_matching;
    std::vector<Noted> m_noted;
    /// The ends of links that are told as one change, those of other references and lists in order,
    /// and those of other lists: of two ends of a link the one of the earlier set tells of it.
    std::set<LinkEnd> m_relinked;
    std::set<LinkEnd> m_preferred;
    std::set<LinkEnd> m_ends;
    std::array<std::unordered_map<std::wstring_view, EntityNumber>, 2> m_identifiers;
};

ItemData TripleOf(double x, double y, double z)
{
    return std::vector<double>{x, y, z};
}

/// The settings of a world that its entities do not tell.
struct Settings
{
    explicit Settings(const KARMPWorld& world)
    {
        KARMathPoint corner;
        KARMathVector pull;
        std::array<double, 3> extent{};
        KARMPUnit::Enum lengthUnit{};
        world.GetOrigin(corner);
        world.GetGravity(pull);
        world.GetSize(extent[0], extent[1], extent[2]);
        world.GetLengthUnit(lengthUnit);
        origin = TripleOf(corner.GetX(), corner.GetY(), corner.GetZ());
        gravity = TripleOf(pull.GetX(), pull.GetY(), pull.GetZ());
        size = TripleOf(extent[0], extent[1], extent[2]);
        unit = static_cast<int>(lengthUnit);
    }

    ItemData origin;
    ItemData gravity;
    ItemData size;
    ItemData unit;
};

std::vector<Difference> WorldComparison::Run()
{
    CompareSettings();
    CompareGlobals();
    CompareEntities();
    std::vector<Difference> differences;
    for (Noted& noted : m_noted)
        if (!IsToldElsewhere(noted))
            differences.push_back(std::move(noted.difference));
    return differences;
}

void WorldComparison::NoteSetting(const wchar_t* name, Quantity::Enum quantity, ItemData before,
                                  ItemData after)
{
    Difference difference;
    difference.kind = DifferenceKind::Setting;
    difference.item = name;
    difference.quantity = quantity;
    difference.oldValue = std::move(before);
    difference.newValue = std::move(after);
    Note(std::move(difference));
}

void WorldComparison::CompareSettings()
{
    const KARMPWorld& first = m_worlds[0];
    const KARMPWorld& second = m_worlds[1];
    const auto compare = [this](const wchar_t* name, Quantity::Enum quantity,
                                const ItemData& before, const ItemData& after) {
        if (!AreEqual(before, after, ItemKind::Numbers, m_options))
            NoteSetting(name, quantity, before, after);
    };
    compare(L"linear_tolerance", Quantity::Length, first.GetLinearTolerance(),
            second.GetLinearTolerance());
    compare(L"angular_tolerance", Quantity::Angle, first.GetAngularTolerance(),
            second.GetAngularTolerance());
    const Settings before(first);
    const Settings after(second);
    compare(L"Origin", Quantity::Length, before.origin, after.origin);
    compare(L"Size", Quantity::Length, before.size, after.size);
    compare(L"Gravity", Quantity::Acceleration, before.gravity, after.gravity);
    compare(L"LengthUnit", Quantity::NoPhysicalQuantity, before.unit, after.unit);
}

void WorldComparison::CompareGlobals()
{
    static constexpr std::array<const wchar_t*, 4> names{L"GlobalBody", L"GlobalAxisSystem",
                                                         L"GlobalTime", L"GroundBody"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Handle& before = m_graphs[0].Globals()[i];
        const Handle& after = m_graphs[1].Globals()[i];
        const auto valueOf = [](const Handle& handle) {
            return handle ? ItemData(handle) : ItemData();
        };
        const bool areSame =
            before && after ? KeyOf(0, *before) == KeyOf(1, *after) : !before && !after;
        if (!areSame)
            NoteSetting(names[i], Quantity::NoPhysicalQuantity, valueOf(before), valueOf(after));
    }
}

// Both worlds' entities stand family by family.
void WorldComparison::CompareEntities()
{
    EntityNumber added = 0;
    const auto addUpTo = [&](std::uint32_t family) {
        for (; added < m_graphs[1].Count() && m_graphs[1].At(added).family < family; ++added) {
            if (m_matching.ofAfter[added] != NoEntity)
                continue;
            Difference difference;
            difference.kind = DifferenceKind::Added;
            difference.after = m_graphs[1].At(added).handle;
            Note(std::move(difference));
        }
    };
    for (EntityNumber number = 0; number < m_graphs[0].Count(); ++number) {
        const WorldGraph::Entity& entity = m_graphs[0].At(number);
        addUpTo(entity.family);
        if (m_matching.ofBefore[number] != NoEntity) {
            ComparePair(number, m_matching.ofBefore[number]);
            continue;
        }
        Difference difference;
        difference.kind = DifferenceKind::Removed;
        difference.before = entity.handle;
        Note(std::move(difference));
    }
    addUpTo(~std::uint32_t(0));
}

void WorldComparison::ComparePair(EntityNumber beforeNumber, EntityNumber afterNumber)
{
    const WorldGraph::Entity& before = m_graphs[0].At(beforeNumber);
    const WorldGraph::Entity& after = m_graphs[1].At(afterNumber);
    const auto note = [&](DifferenceKind kind, const wchar_t* item, std::wstring oldText,
                          std::wstring newText) {
        Difference difference;
        difference.kind = kind;
        difference.before = before.handle;
        difference.after = after.handle;
        difference.item = item;
        difference.oldValue = std::move(oldText);
        difference.newValue = std::move(newText);
        Note(std::move(difference));
    };
    const std::wstring& oldName = before.handle->getEntityName();
    const std::wstring& newName = after.handle->getEntityName();
    if (oldName != newName)
        note(DifferenceKind::Renamed, L"name", oldName, newName);
    if (before.items != after.items) {
        const auto nameOf = [](const WorldGraph::Entity& entity) {
            return std::wstring(entity.items->Name().begin(), entity.items->Name().end());
        };
        note(DifferenceKind::Changed, L"class", nameOf(before), nameOf(after));
    }
    CompareValues(before, after);
    CompareLinks(before, after, KeyOf(0, *before.handle));
    CompareElements(before, after);
}

// Of entities of two classes the items are compared that both have.
void WorldComparison::CompareValues(const WorldGraph::Entity& before,
                                    const WorldGraph::Entity& after)
{
    for (const ItemInfo* const item : before.items->Values()) {
        const ItemInfo* const other =
            before.items == after.items ? item : after.items->Find(item->path);
        if (other != nullptr && other->kind == item->kind)
            CompareValue(before, after, *item, *other);
    }
}

void WorldComparison::CompareValue(const WorldGraph::Entity& before,
                                   const WorldGraph::Entity& after, const ItemInfo& item,
                                   const ItemInfo& other)
{
    ItemData oldValue = item.Get(*before.handle);
    ItemData newValue = other.Get(*after.handle);
    if (AreEqual(oldValue, newValue, item.kind, m_options))
        return;
    Difference difference;
    const bool isPosition = item.kind == ItemKind::Transformation && item.path == PositionPath;
    difference.kind = isPosition ? DifferenceKind::Moved : DifferenceKind::Changed;
    difference.before = before.handle;
    difference.after = after.handle;
    difference.item = item.path;
    difference.quantity = item.quantity;
    difference.oldValue = std::move(oldValue);
    difference.newValue = std::move(newValue);
    Note(std::move(difference));
}

void WorldComparison::CompareLinks(const WorldGraph::Entity& before,
                                   const WorldGraph::Entity& after, std::uint64_t holder)
{
    for (const ItemInfo* const item : before.items->Links()) {
        const ItemInfo* const other =
            before.items == after.items ? item : after.items->Find(item->path);
        if (other == nullptr || other->kind != item->kind)
            continue;
        const LinkedEntities oldTargets = TargetsOf(before, *item, 0);
        const LinkedEntities newTargets = TargetsOf(after, *other, 1);
        Difference common;
        common.before = before.handle;
        common.after = after.handle;
        common.item = item->path;
        if (item->kind == ItemKind::Reference)
            CompareReference(common, *item, holder, oldTargets, newTargets);
        else
            CompareReferences(common, *item, holder, oldTargets, newTargets);
    }
}

void WorldComparison::CompareReference(const Difference& common, const ItemInfo& item,
                                       std::uint64_t holder, const LinkedEntities& before,
                                       const LinkedEntities& after)
{
    if (before.empty() && after.empty())
        return;
    if (after.empty())
        return NoteLink(common, item, holder, before[0], 0);
    if (before.empty())
        return NoteLink(common, item, holder, after[0], 1);
    if (before[0].key == after[0].key)
        return;
    m_relinked.insert({false, holder, item.name, before[0].key});
    m_relinked.insert({true, holder, item.name, after[0].key});
    Difference difference = common;
    difference.oldValue = before[0].entity;
    difference.newValue = after[0].entity;
    Note(std::move(difference));
}

void WorldComparison::CompareReferences(const Difference& common, const ItemInfo& item,
                                        std::uint64_t holder, const LinkedEntities& before,
                                        const LinkedEntities& after)
{
    const bool isSame = std::equal(before.begin(), before.end(), after.begin(), after.end(),
                                   [](const LinkedEntity& left, const LinkedEntity& right) {
                                       return left.key == right.key && left.word == right.word;
                                   });
    if (isSame)
        return;
    // What the second list still holds of an entry of the first one.
    std::unordered_multimap<std::uint64_t, const LinkedEntity*> others;
    for (const LinkedEntity& entry : after)
        others.emplace(entry.key, &entry);
    std::vector<std::uint64_t> kept;
    for (const LinkedEntity& entry : before) {
        const auto found = others.find(entry.key);
        if (found == others.end()) {
            NoteLink(common, item, holder, entry, 0);
            continue;
        }
        kept.push_back(entry.key);
        if (found->second->word != entry.word) {
            Difference difference = common;
            difference.item += L'/' + std::wstring(item.entryWord);
            difference.target = entry.entity;
            difference.oldValue = std::wstring(entry.word);
            difference.newValue = std::wstring(found->second->word);
            Note(std::move(difference));
        }
        others.erase(found);
    }
    std::vector<std::uint64_t> order;
    for (const LinkedEntity& entry : after) {
        const auto range = others.equal_range(entry.key);
        const auto found = std::find_if(range.first, range.second,
                                        [&](const auto& other) { return other.second == &entry; });
        if (found != range.second)
            NoteLink(common, item, holder, entry, 1);
        else
            order.push_back(entry.key);
    }
    if (!item.isInOrder || kept == order)
        return;
    const auto handlesOf = [](const LinkedEntities& entries) {
        Handles handles;
        for (const LinkedEntity& entry : entries)
            handles.push_back(entry.entity);
        return handles;
    };
    Difference difference = common;
    difference.kind = DifferenceKind::Reordered;
    difference.oldValue = handlesOf(before);
    difference.newValue = handlesOf(after);
    Note(std::move(difference));
}

void WorldComparison::CompareElements(const WorldGraph::Entity& before,
                                      const WorldGraph::Entity& after)
{
    const ClassItems& items = *before.items;
    if (before.items != after.items ||
        (!items.HasMore(*before.handle) && !items.HasMore(*after.handle)))
        return;
    const auto note = [&](std::wstring&& path, ItemData&& oldValue, ItemData&& newValue) {
        Difference difference;
        difference.before = before.handle;
        difference.after = after.handle;
        difference.item = std::move(path);
        difference.oldValue = std::move(oldValue);
        difference.newValue = std::move(newValue);
        Note(std::move(difference));
    };
    const auto areSame = [this](const std::wstring& first, const std::wstring& second) {
        return AreIdentifiersSame(first, second);
    };
    ElementComparison(items, m_options, note, areSame).Compare(*before.handle, *after.handle);
}

void WorldComparison::NoteLink(const Difference& common, const ItemInfo& item, std::uint64_t holder,
                               const LinkedEntity& target, std::size_t world)
{
    Noted noted;
    noted.difference = common;
    noted.difference.kind = world == 0 ? DifferenceKind::LinkLost : DifferenceKind::LinkGained;
    noted.difference.target = target.entity;
    noted.link = LinkEnd{world == 1, holder, item.name, target.key};
    noted.otherSide = item.otherSide;
    noted.isPreferred = item.kind == ItemKind::Reference || item.isInOrder;
    noted.target = m_graphs[world].NumberOf(target.entity.get());
    noted.world = world;
    (noted.isPreferred ? m_preferred : m_ends).insert(*noted.link);
    m_noted.push_back(std::move(noted));
}

LinkedEntities WorldComparison::TargetsOf(const WorldGraph::Entity& entity, const ItemInfo& item,
                                          std::size_t world) const
{
    LinkedEntities targets;
    const ItemData data = item.Get(*entity.handle);
    const auto add = [&](const Handle& target) {
        if (target)
            targets.push_back({target, KeyOf(world, *target), {}});
    };
    if (const auto* const target = std::get_if<Handle>(&data))
        add(*target);
    const auto* const list = std::get_if<Handles>(&data);
    if (list == nullptr)
        return targets;
    const auto words =
        item.entryWord.empty() ? std::vector<std::wstring_view>() : item.EntryWords(*entity.handle);
    for (std::size_t i = 0; i < list->size(); ++i) {
        if (!(*list)[i])
            continue;
        add((*list)[i]);
        if (i < words.size())
            targets.back().word = words[i];
    }
    return targets;
}

/// A number that corresponding entities have in common and no others. Entities that a world does
/// not list correspond by class and name.
std::uint64_t WorldComparison::KeyOf(std::size_t world, const KARMPEntity& entity) const
{
    constexpr std::uint64_t ofBefore = 1ULL << 32U;
    constexpr std::uint64_t ofAfter = 2ULL << 32U;
    constexpr std::uint64_t unlisted = 1ULL << 63U;
    const EntityNumber number = m_graphs[world].NumberOf(&entity);
    if (number == NoEntity)
        return unlisted | Mix(ClassItems::Of(entity).Hash(),
                              std::hash<std::wstring>()(entity.getEntityName()));
    if (world == 0)
        return ofBefore | number;
    const EntityNumber partner = m_matching.ofAfter[number];
    return partner != NoEntity ? ofBefore | partner : ofAfter | number;
}

bool WorldComparison::AreIdentifiersSame(const std::wstring& before, const std::wstring& after)
{
    const std::array<const std::wstring*, 2> texts{&before, &after};
    std::array<EntityNumber, 2> numbers{};
    for (std::size_t i = 0; i < 2; ++i) {
        if (m_identifiers[i].empty())
            for (EntityNumber number = 0; number < m_graphs[i].Count(); ++number)
                m_identifiers[i].emplace(m_graphs[i].At(number).identifier, number);
        const auto found = m_identifiers[i].find(*texts[i]);
        numbers[i] = found != m_identifiers[i].end() ? found->second : NoEntity;
    }
    if (numbers[0] == NoEntity || numbers[1] == NoEntity)
        return before == after;
    return m_matching.ofBefore[numbers[0]] == numbers[1];
}

// Of two equal ends the smaller one tells of the link. What links an added or removed entity is
// told by that one.
bool WorldComparison::IsToldElsewhere(const Noted& noted) const
{
    if (!noted.link || noted.otherSide.empty())
        return false;
    const LinkEnd& link = *noted.link;
    const LinkEnd other{link.isGained, link.target, noted.otherSide, link.holder};
    if (m_relinked.count(other) != 0 || (!noted.isPreferred && m_preferred.count(other) != 0))
        return true;
    const std::set<LinkEnd>& equals = noted.isPreferred ? m_preferred : m_ends;
    return (other < link && equals.count(other) != 0) || HoldsLink(noted);
}

/// True when the target stands in one world alone and holds the link, too.
bool WorldComparison::HoldsLink(const Noted& noted) const
{
    if (noted.target == NoEntity)
        return false;
    const auto& partners = noted.world == 0 ? m_matching.ofBefore : m_matching.ofAfter;
    if (partners[noted.target] != NoEntity)
        return false;
    const WorldGraph::Entity& target = m_graphs[noted.world].At(noted.target);
    const auto& links = target.items->Links();
    const auto item = std::find_if(links.begin(), links.end(), [&noted](const ItemInfo* candidate) {
        return candidate->name == noted.otherSide;
    });
    if (item == links.end())
        return false;
    const LinkedEntities back = TargetsOf(target, **item, noted.world);
    return std::any_of(back.begin(), back.end(), [&noted](const LinkedEntity& entry) {
        return entry.key == noted.link->holder;
    });
}

} // namespace

const char* DifferenceText(DifferenceKind kind)
{
    static constexpr std::array<const char*, 9> texts{"setting",   "removed",     "added",
                                                      "renamed",   "moved",       "changed",
                                                      "link-lost", "link-gained", "reordered"};
    return texts[static_cast<std::size_t>(kind)];
}

std::vector<Difference> FindDifferences(const KARMPWorld& before, const KARMPWorld& after,
                                        const DifferenceOptions& options)
{
    return WorldComparison(before, after, options).Run();
}

} // namespace karmp::documents
