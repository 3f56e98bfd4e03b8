#include "KARMPEntityIndex.h"

#include "KARMPModelNames.h"
#include "KARTextConversion.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace karmp::model {

struct GivenIdentifier
{};

} // namespace karmp::model

// Content lists see what their entities hold; asking by GetIdentifier would make an identifier, and
// SetIdentifier a second text of the same characters.
template <>
struct karmp::ContentOf<karmp::model::GivenIdentifier>
{
    static void Share(KARMPEntity& entity) noexcept
    {
        std::destroy_at(&entity.m_identifier);
        std::construct_at(&entity.m_identifier, entity.getStoredName());
        entity.m_hasIdentifier = true;
    }
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

void IdentifyByName(KARMPEntity& entity) noexcept
{
    ContentOf<GivenIdentifier>::Share(entity);
}

bool IsText(const kar::SharedText& text, std::string_view utf8)
{
    return text.IsNarrow() ? text.Narrow() == utf8 : kar::ToUtf8(text.Copy()) == utf8;
}

namespace {

// The low bit marks a slot that is used.
template <class Text>
std::uint32_t MarkedHash(Text text)
{
    const std::uint64_t hash = std::hash<Text>()(text);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32)) | 1;
}

std::uint32_t HashOf(std::string_view identifier)
{
    return IsAscii(identifier) ? MarkedHash(identifier)
                               : MarkedHash<std::wstring_view>(kar::ToWide(identifier));
}

// Needs no allocation.
std::uint32_t HashOf(const kar::SharedText& identifier)
{
    return identifier.IsNarrow() ? MarkedHash(identifier.Narrow())
                                 : MarkedHash<std::wstring_view>(identifier.Get());
}

} // namespace

void EntityIndex::Clear()
{
    m_slots.clear();
    m_entities.clear();
    m_removed = 0;
}

void EntityIndex::Reserve(std::size_t count)
{
    std::size_t slots = 16;
    while (slots / 4 * 3 < count)
        slots *= 2;
    if (slots > m_slots.size())
        Grow(slots);
    m_entities.reserve(count);
}

// Slots keep their order, so that a growth runs through memory in a row, and what was removed is
// left out.
void EntityIndex::Grow(std::size_t slots)
{
    std::vector<QOBSharedHandle<KARMPEntity>> kept;
    if (m_removed > 0)
        kept.reserve(m_entities.size() - m_removed);
    std::vector<Slot> former(slots);
    former.swap(m_slots);
    for (Slot moved : former) {
        if (moved.hash == 0)
            continue;
        if (m_removed > 0) {
            if (!m_entities[moved.index])
                continue;
            kept.push_back(std::move(m_entities[moved.index]));
            moved.index = static_cast<std::uint32_t>(kept.size() - 1);
        }
        std::size_t slot = First(moved.hash);
        while (m_slots[slot].hash != 0)
            slot = Next(slot);
        m_slots[slot] = moved;
    }
    if (m_removed > 0)
        m_entities.swap(kept);
    m_removed = 0;
}

// Every fourth slot is free at least. Growing by four at once spares two moves of three; when most
// entities were removed, their slots are enough.
void EntityIndex::GrowForOne()
{
    if (4 * m_entities.size() >= 3 * m_slots.size()) {
        const bool isFull = 2 * m_removed < m_entities.size();
        Grow(m_slots.empty() ? 16 : m_slots.size() * (isFull ? 4 : 1));
    }
    if (m_entities.size() == m_entities.capacity())
        m_entities.reserve(2 * m_entities.size() + 16);
}

void EntityIndex::Add(const QOBSharedHandle<KARMPEntity>& entity)
{
    const kar::SharedText* const given = IdentifierIfGiven(*entity);
    if (given == nullptr)
        return;
    if (const Place place = FindPlace(kar::ToUtf8(given->Copy())); place.entity == nullptr)
        AddAt(place, entity);
}

EntityIndex::Place EntityIndex::FindPlace(std::string_view identifier)
{
    GrowForOne();
    return FindPlace(identifier, HashOf(identifier));
}

EntityIndex::Place EntityIndex::FindPlace(std::string_view identifier, std::uint32_t hash) const
{
    Place place{nullptr, hash, First(hash)};
    for (; m_slots[place.slot].hash != 0; place.slot = Next(place.slot)) {
        if (m_slots[place.slot].hash != hash)
            continue;
        const auto& entity = m_entities[m_slots[place.slot].index];
        if (entity && !entity->isOrphaned() && IsText(*IdentifierIfGiven(*entity), identifier)) {
            place.entity = entity.get();
            break;
        }
    }
    return place;
}

void EntityIndex::AddAt(const Place& place, const QOBSharedHandle<KARMPEntity>& entity) noexcept
{
    m_slots[place.slot] = {place.hash, static_cast<std::uint32_t>(m_entities.size())};
    m_entities.push_back(entity);
}

void EntityIndex::Remove(const KARMPEntity& entity) noexcept
{
    const kar::SharedText* const given = IdentifierIfGiven(entity);
    if (given == nullptr || m_slots.empty())
        return;
    const std::uint32_t hash = HashOf(*given);
    for (std::size_t slot = First(hash); m_slots[slot].hash != 0; slot = Next(slot)) {
        auto& held = m_entities[m_slots[slot].index];
        if (held.get() == &entity) {
            held = nullptr;
            ++m_removed;
            return;
        }
    }
}

KARMPEntity* EntityIndex::Find(std::string_view identifier) const
{
    return m_slots.empty() ? nullptr : FindPlace(identifier, HashOf(identifier)).entity;
}

} // namespace karmp::model
