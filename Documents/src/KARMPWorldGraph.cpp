#include "KARMPWorldGraph.h"

#include "KARMPBody.h"
#include "KARMPFamilies.h"
#include "KARMPListedEntities.h"
#include "KARMPWorld.h"

#include <functional>

namespace karmp::documents {

namespace {

using Target = QOBSharedHandle<KARMPEntity>;

// The label of a link as its target sees it.
constexpr std::uint64_t Backward = 0x5851F42D4C957F2DU;

struct LabelledPair
{
    EntityNumber from;
    WorldGraph::Link link;
};

// The globals and the ground.
std::vector<Target> FixturesOf(const KARMPWorld& world)
{
    std::vector<Target> fixtures;
    for (const GlobalEntity& global : GlobalsOf(world))
        fixtures.push_back(global.entity);
    QOBSharedHandle<KARMPBody> ground;
    world.GetGroundBody(ground);
    fixtures.emplace_back(ground);
    return fixtures;
}

} // namespace

WorldGraph::WorldGraph(const KARMPWorld& world) : m_globals(FixturesOf(world))
{
    std::uint32_t family = 0;
    ForEachRegistryElement([&](const auto& element) {
        using T = typename std::remove_cvref_t<decltype(element)>::Type;
        const int count = world.Count<T>();
        for (int index = 0; index < count; ++index) {
            QOBSharedHandle<T> entity;
            if (!KARFailed(world.Get<T>(index, entity)) && entity)
                Add(Target::unchecked(entity), family);
        }
        ++family;
    });
    AddLinks();
}

void WorldGraph::Add(const Target& entity, std::uint32_t family)
{
    const auto number = static_cast<EntityNumber>(m_entities.size());
    if (!m_numbers.emplace(entity.get(), number).second)
        return;
    Entity added{entity, &ClassItems::Of(*entity), {}, family, false, 0};
    entity->GetIdentifier(added.identifier);
    const std::wstring& name = entity->getEntityName();
    added.isNamed = !name.empty();
    added.title = Mix(added.items->Hash(), std::hash<std::wstring_view>()(name));
    m_entities.push_back(std::move(added));
}

void WorldGraph::AddLinks()
{
    std::vector<LabelledPair> pairs;
    const auto add = [&](EntityNumber from, WorldGraph::Link link) {
        pairs.push_back({from, link});
        pairs.push_back({link.target, {link.label ^ Backward, from, link.position}});
    };
    for (EntityNumber number = 0; number < Count(); ++number) {
        const ItemInfo* labelled = nullptr;
        WorldGraph::Link link{};
        ForEachTarget(*m_entities[number].handle, [&](const ItemInfo& item, const Target& target) {
            if (&item != labelled)
                link = {std::hash<std::wstring>()(item.path), NoEntity, 0};
            labelled = &item;
            link.position += item.isInOrder ? 1 : 0;
            link.target = NumberOf(target.get());
            if (link.target != NoEntity)
                add(number, link);
        });
    }
    m_firstLinks.assign(m_entities.size() + 1, 0);
    for (const LabelledPair& pair : pairs)
        ++m_firstLinks[pair.from + 1];
    for (std::size_t i = 1; i < m_firstLinks.size(); ++i)
        m_firstLinks[i] += m_firstLinks[i - 1];
    m_links.resize(pairs.size());
    std::vector<std::size_t> next(m_firstLinks.begin(), m_firstLinks.end() - 1);
    for (const LabelledPair& pair : pairs)
        m_links[next[pair.from]++] = pair.link;
}

EntityNumber WorldGraph::NumberOf(const KARMPEntity* entity) const
{
    const auto found = m_numbers.find(entity);
    return found != m_numbers.end() ? found->second : NoEntity;
}

} // namespace karmp::documents
