#include "StrippedLinks.h"

#include "KARMPItems.h"

#include <unordered_set>

StrippedLinks::StrippedLinks(const QOBSharedList<KARMPEntity>& entities)
{
    std::unordered_set<const KARMPEntity*> listed;
    for (const auto& entity : entities)
        listed.insert(entity.get());
    for (const auto& entity : entities) {
        m_entities.push_back(entity.get());
        m_objects.push_back(std::make_unique<Object>());
        const auto first = static_cast<std::uint32_t>(m_lists.size());
        m_firstLists.push_back(first);
        const karmp::ItemInfo* last = nullptr;
        karmp::ForEachTarget(*entity, [&](const karmp::ItemInfo& item, const auto& target) {
            // Connectors, values and what belongs to them are not carried over.
            if (listed.count(target.get()) == 0)
                return;
            if (&item != last)
                m_lists.push_back({static_cast<std::uint32_t>(m_targets.size()), 0});
            last = &item;
            ++m_lists.back().count;
            m_targets.push_back(target.get());
        });
        if (m_lists.size() > first + MostLists)
            m_lists.resize(first + MostLists);
    }
    m_firstLists.push_back(static_cast<std::uint32_t>(m_lists.size()));
    m_block.resize(m_targets.size());
}

StrippedLinks::~StrippedLinks()
{
    TakeAway();
}

inline StrippedLinks::Object*& StrippedLinks::ObjectOf(const QOBSharedObject* entity)
{
    return reinterpret_cast<Object*&>(m_map.SlotOf(entity));
}

void StrippedLinks::Make(Blocks blocks)
{
    m_areOneByOne = blocks == Blocks::OneByOne;
    for (std::size_t i = 0; i < m_entities.size(); ++i)
        ObjectOf(m_entities[i]) = m_objects[i].get();
    for (std::size_t i = 0; i < m_entities.size(); ++i) {
        Object& object = *m_objects[i];
        for (std::uint32_t at = m_firstLists[i]; at < m_firstLists[i + 1]; ++at) {
            const List& list = m_lists[at];
            Object** const block =
                m_areOneByOne ? new Object*[list.count] : m_block.data() + list.begin;
            object.lists[at - m_firstLists[i]] = block;
            for (std::uint32_t link = 0; link < list.count; ++link) {
                Object* const target = ObjectOf(m_targets[list.begin + link]);
                ++target->count;
                block[link] = target;
            }
        }
    }
}

void StrippedLinks::TakeAway()
{
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        Object& object = *m_objects[i];
        for (Object**& block : object.lists) {
            if (m_areOneByOne)
                delete[] block;
            block = nullptr;
        }
        object.count = 0;
    }
    m_map.ForEachSlot([](QOBSharedObject*& slot) { slot = nullptr; });
    m_areOneByOne = false;
}
