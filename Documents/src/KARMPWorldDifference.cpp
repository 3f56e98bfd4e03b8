#include "KARMPWorldDifference.h"

#include "KARMPEntityContents.h"
#include "KARMPEntityElement.h"
#include "KARMPEntityMatching.h"
#include "KARMPLinkComparison.h"
#include "KARMPWorld.h"
#include "KARMPWorldGraph.h"

#include <array>
#include <functional>
#include <unordered_map>
#include <utility>

namespace karmp::documents {

namespace {

using Handle = QOBSharedHandle<KARMPEntity>;
using Quantity = KARMPPhysicalQuantity;

constexpr std::wstring_view PositionPath = L"Position";

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
    void CompareSettings();
    void CompareGlobals();
    void NoteSetting(const wchar_t* name, Quantity::Enum quantity, Value before, Value after);
    void CompareEntities();
    void ComparePair(EntityNumber before, EntityNumber after);
    void CompareValues(const WorldGraph::Entity& before, const WorldGraph::Entity& after);
    void CompareValue(const WorldGraph::Entity& before, const WorldGraph::Entity& after,
                      const ItemInfo& item, const ItemInfo& other);
    void CompareElements(const WorldGraph::Entity& before, const WorldGraph::Entity& after);
    void Note(Difference difference) { m_noted.push_back({std::move(difference), {}, {}}); }

    bool AreIdentifiersSame(const std::wstring& before, const std::wstring& after);

    const DifferenceOptions& m_options;
    std::array<std::reference_wrapper<const KARMPWorld>, 2> m_worlds;
    std::array<WorldGraph, 2> m_graphs;
    EntityMatching m_matching;
    LinkComparison m_links{m_graphs, m_matching};
    std::vector<NotedDifference> m_noted;
    std::array<std::unordered_map<std::wstring_view, EntityNumber>, 2> m_identifiers;
};

Value TripleOf(double x, double y, double z)
{
    return NumberArray{x, y, z};
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

    Value origin;
    Value gravity;
    Value size;
    Value unit;
};

std::vector<Difference> WorldComparison::Run()
{
    CompareSettings();
    CompareGlobals();
    CompareEntities();
    std::vector<Difference> differences;
    for (NotedDifference& noted : m_noted)
        if (!m_links.IsToldElsewhere(noted))
            differences.push_back(std::move(noted.difference));
    return differences;
}

void WorldComparison::NoteSetting(const wchar_t* name, Quantity::Enum quantity, Value before,
                                  Value after)
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
    const auto compare = [this](const wchar_t* name, Quantity::Enum quantity, const Value& before,
                                const Value& after) {
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
        const auto valueOf = [](const Handle& handle) { return handle ? Value(handle) : Value(); };
        const bool areSame = before && after ? m_links.KeyOf(0, *before) == m_links.KeyOf(1, *after)
                                             : !before && !after;
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
    m_links.Compare(before, after, m_noted);
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
    Value oldValue = item.Get(*before.handle);
    Value newValue = other.Get(*after.handle);
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

void WorldComparison::CompareElements(const WorldGraph::Entity& before,
                                      const WorldGraph::Entity& after)
{
    const ClassItems& items = *before.items;
    if (before.items != after.items ||
        (!items.HasMore(*before.handle) && !items.HasMore(*after.handle)))
        return;
    const auto note = [&](std::wstring&& path, Value&& oldValue, Value&& newValue) {
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
