#include "KARMPEntityIndex.h"

#include <optional>
#include <utility>

namespace karmp::model {

struct GivenIdentifier
{};

} // namespace karmp::model

// Content lists see what their entities hold; asking by GetIdentifier would make an identifier.
template <>
struct karmp::ContentOf<karmp::model::GivenIdentifier>
{
    static const std::wstring* Of(const KARMPEntity& entity)
    {
        return entity.m_identifier.has_value() ? &*entity.m_identifier : nullptr;
    }
};

namespace karmp::model {

const std::wstring* IdentifierIfGiven(const KARMPEntity& entity)
{
    return ContentOf<GivenIdentifier>::Of(entity);
}

void EntityIndex::Clear()
{
    m_slots.clear();
    m_used = 0;
}

void EntityIndex::Reserve(std::size_t count)
{
    std::size_t slots = 16;
    while (slots < 2 * count)
        slots *= 2;
    if (slots > m_slots.size())
        Grow(slots);
}

// The low bit of a hash marks a used slot, so that the others choose the slot.
void EntityIndex::Grow(std::size_t slots)
{
    std::vector<Slot> former(slots);
    former.swap(m_slots);
    m_used = 0;
    for (Slot& slot : former) {
        if (!slot.entity)
            continue;
        std::size_t index = (slot.hash >> 1) & (slots - 1);
        while (m_slots[index].hash != 0)
            index = (index + 1) & (slots - 1);
        m_slots[index] = std::move(slot);
        ++m_used;
    }
}

// The slot of the identifier, or the first unused one behind it.
std::size_t EntityIndex::SlotOf(std::wstring_view identifier, std::size_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t index = (hash >> 1) & mask;
    while (m_slots[index].hash != 0) {
        const Slot& slot = m_slots[index];
        if (slot.hash == hash && slot.entity && *IdentifierIfGiven(*slot.entity) == identifier)
            break;
        index = (index + 1) & mask;
    }
    return index;
}

void EntityIndex::GrowForOne()
{
    if (4 * (m_used + 1) > 3 * m_slots.size())
        Grow(m_slots.empty() ? 16 : 2 * m_slots.size());
}

void EntityIndex::Add(const QOBSharedHandle<KARMPEntity>& entity, std::size_t hash)
{
    if (Find(*IdentifierIfGiven(*entity), hash) == nullptr)
        AddNew(entity, hash);
}

void EntityIndex::AddNew(const QOBSharedHandle<KARMPEntity>& entity, std::size_t hash)
{
    GrowForOne();
    const std::size_t mask = m_slots.size() - 1;
    std::size_t index = (Marked(hash) >> 1) & mask;
    while (m_slots[index].hash != 0)
        index = (index + 1) & mask;
    m_slots[index] = {Marked(hash), entity};
    ++m_used;
}

void EntityIndex::Remove(const KARMPEntity& entity)
{
    const std::wstring* const identifier = IdentifierIfGiven(entity);
    if (identifier == nullptr || m_slots.empty())
        return;
    Slot& slot = m_slots[SlotOf(*identifier, Marked(HashOf(*identifier)))];
    if (slot.entity.get() == &entity)
        slot.entity = nullptr;
}

KARMPEntity* EntityIndex::Find(std::wstring_view identifier, std::size_t hash) const
{
    if (m_slots.empty())
        return nullptr;
    return m_slots[SlotOf(identifier, Marked(hash))].entity.get();
}

} // namespace karmp::model
