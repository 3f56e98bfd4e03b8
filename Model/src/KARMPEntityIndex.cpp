#include "KARMPEntityIndex.h"

#include "KARMPModelNames.h"
#include "KARTextConversion.h"

#include <functional>
#include <string>
#include <utility>

namespace karmp::model {

struct GivenIdentifier
{};

} // namespace karmp::model

// Content lists see what their entities hold; asking by GetIdentifier would make an identifier.
template <>
struct karmp::ContentOf<karmp::model::GivenIdentifier>
{
    static const kar::SharedText* Of(const KARMPEntity& entity)
    {
        return entity.m_hasIdentifier ? &entity.m_identifier : nullptr;
    }
};

namespace karmp::model {

const kar::SharedText* IdentifierIfGiven(const KARMPEntity& entity)
{
    return ContentOf<GivenIdentifier>::Of(entity);
}

bool IsText(const kar::SharedText& text, std::string_view utf8)
{
    return text.IsNarrow() ? text.Narrow() == utf8 : kar::ToUtf8(text.Copy()) == utf8;
}

// Of a text that is stored wide the hash is that of the wide text.
std::size_t EntityIndex::HashOf(std::string_view identifier)
{
    return IsAscii(identifier) ? std::hash<std::string_view>()(identifier)
                               : std::hash<std::wstring>()(kar::ToWide(identifier));
}

std::size_t EntityIndex::HashOf(const kar::SharedText& identifier)
{
    return identifier.IsNarrow() ? std::hash<std::string_view>()(identifier.Narrow())
                                 : std::hash<std::wstring>()(identifier.Get());
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

void EntityIndex::GrowForOne()
{
    if (4 * (m_used + 1) > 3 * m_slots.size())
        Grow(m_slots.empty() ? 16 : 2 * m_slots.size());
}

void EntityIndex::Add(const QOBSharedHandle<KARMPEntity>& entity)
{
    const kar::SharedText* const given = IdentifierIfGiven(*entity);
    if (given == nullptr)
        return;
    const std::size_t hash = HashOf(*given);
    if (Find(kar::ToUtf8(given->Copy()), hash) == nullptr)
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
    const kar::SharedText* const given = IdentifierIfGiven(entity);
    if (given == nullptr || m_slots.empty())
        return;
    const std::size_t mask = m_slots.size() - 1;
    std::size_t index = (Marked(HashOf(*given)) >> 1) & mask;
    while (m_slots[index].hash != 0 && m_slots[index].entity.get() != &entity)
        index = (index + 1) & mask;
    m_slots[index].entity = nullptr;
}

KARMPEntity* EntityIndex::Find(std::string_view identifier, std::size_t hash) const
{
    if (m_slots.empty())
        return nullptr;
    const std::size_t mask = m_slots.size() - 1;
    const std::size_t marked = Marked(hash);
    for (std::size_t index = (marked >> 1) & mask; m_slots[index].hash != 0;
         index = (index + 1) & mask) {
        const Slot& slot = m_slots[index];
        if (slot.hash == marked && slot.entity &&
            IsText(*IdentifierIfGiven(*slot.entity), identifier))
            return slot.entity.get();
    }
    return nullptr;
}

} // namespace karmp::model
