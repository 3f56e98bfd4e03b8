#include "ViewEntities.h"

#include "EntityText.h"
#include "KARMPFamilies.h"
#include "KARMPItems.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"

namespace karmp::tool {

namespace {

/// Numbers texts in the order in which they come.
class Numbering
{
public:
    explicit Numbering(std::vector<std::string>& texts) : m_texts(texts) {}

    int NumberOf(const std::string& text)
    {
        const auto [found, isNew] = m_numbers.try_emplace(text, static_cast<int>(m_texts.size()));
        if (isNew)
            m_texts.push_back(text);
        return found->second;
    }

private:
    std::vector<std::string>& m_texts;
    std::unordered_map<std::string, int> m_numbers;
};

} // namespace

// Lists without entities are left out.
EntityIndex::EntityIndex(const KARMPWorld& world, ViewScene& scene) : m_scene(scene)
{
    Numbering kinds(scene.kinds);
    ForEachRegistryElement([&](const auto& element) {
        using T = typename std::decay_t<decltype(element)>::Type;
        const std::size_t first = m_entities.size();
        for (int index = 0; index < world.Count<T>(); ++index) {
            QOBSharedHandle<T> member;
            if (world.Get<T>(index, member) != KARSuccess || !member)
                continue;
            const QOBSharedHandle<KARMPEntity> entity(member);
            Add(*entity, kinds.NumberOf(ClassOf(*entity)));
        }
        const std::size_t count = m_entities.size() - first;
        if (count > 0)
            scene.families.push_back({kar::ToUtf8(element.name), static_cast<int>(count)});
    });
    AddLinks();
}

void EntityIndex::Add(const KARMPEntity& entity, int kind)
{
    m_numbers.emplace(&entity, static_cast<int>(m_entities.size()));
    m_entities.push_back(&entity);
    ViewEntity& added = m_scene.entities.emplace_back();
    added.kind = kind;
    added.name = kar::ToUtf8(entity.getEntityName());
    added.identifier = kar::ToUtf8(IdentifierOf(entity));
}

void EntityIndex::AddLinks()
{
    Numbering labels(m_scene.labels);
    for (std::size_t index = 0; index < m_entities.size(); ++index) {
        std::vector<ViewLinks>& links = m_scene.entities[index].links;
        const auto add = [&](const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target) {
            const int number = NumberOf(*target);
            if (number < 0)
                return;
            const int label = labels.NumberOf(kar::ToUtf8(item.path));
            if (links.empty() || links.back().label != label)
                links.push_back({label, {}});
            links.back().targets.push_back(number);
        };
        ForEachTarget(*m_entities[index], add);
    }
}

int EntityIndex::NumberOf(const KARMPEntity& entity) const
{
    const auto found = m_numbers.find(&entity);
    return found == m_numbers.end() ? -1 : found->second;
}

void EntityIndex::Note(const KARMPEntity& entity, std::string_view reason)
{
    if (const int number = NumberOf(entity); number >= 0)
        m_scene.entities[static_cast<std::size_t>(number)].note = reason;
}

} // namespace karmp::tool
