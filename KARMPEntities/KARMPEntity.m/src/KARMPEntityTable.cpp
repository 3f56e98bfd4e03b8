#include "KARMPEntityTable.h"

#include "KARMPEntity.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

using Entry = KARMPEntityTable::Entry;

// The characters of an identifier behind what all identifiers begin with, eight in a number whose
// order is theirs. It stops at a character that is no byte, so that what follows does not count.
std::uint64_t orderOf(std::wstring_view text)
{
    std::uint64_t order = 0;
    int shift = 64;
    for (const wchar_t character : text.substr(0, 8)) {
        shift -= 8;
        if (character <= 0)
            break;
        const auto value = std::min<std::uint64_t>(static_cast<std::uint64_t>(character), 0xFFU);
        order |= value << shift;
        if (value == 0xFFU)
            break;
    }
    return order;
}

struct Place
{
    std::uint64_t order;
    const Entry* entry;

    bool operator<(const Place& other) const
    {
        return order != other.order ? order < other.order : entry->first < other.entry->first;
    }
};

std::size_t commonStart(const std::deque<Entry>& entries)
{
    std::wstring_view start = entries.front().first;
    for (const Entry& entry : entries) {
        const auto ends =
            std::mismatch(start.begin(), start.end(), entry.first.begin(), entry.first.end());
        start = start.substr(0, static_cast<std::size_t>(ends.first - start.begin()));
    }
    return start.size();
}

} // namespace

KARMPEntityTable::KARMPEntityTable() = default;
KARMPEntityTable::~KARMPEntityTable() = default;
KARMPEntityTable::KARMPEntityTable(KARMPEntityTable&&) noexcept = default;
KARMPEntityTable& KARMPEntityTable::operator=(KARMPEntityTable&&) noexcept = default;

inline std::uint32_t KARMPEntityTable::Hash(std::wstring_view text) noexcept
{
    // Identifiers are long and their characters wide: two words are mixed at once, each on its own.
    std::array<std::uint64_t, 2> words{};
    std::array<std::uint64_t, 2> hashes{text.size(), 0};
    const auto mix = [&] {
        for (std::size_t i = 0; i < words.size(); ++i)
            hashes[i] = (std::rotl(hashes[i], 29) ^ words[i]) * 0x9E3779B97F4A7C15U;
    };
    constexpr std::size_t step = sizeof words / sizeof(wchar_t);
    for (; text.size() >= step; text.remove_prefix(step)) {
        std::memcpy(words.data(), text.data(), sizeof words);
        mix();
    }
    words = {};
    if (!text.empty())
        std::memcpy(words.data(), text.data(), text.size() * sizeof(wchar_t));
    mix();
    words = {hashes[1], 0};
    mix();
    return static_cast<std::uint32_t>(hashes[0] >> 32U);
}

// The slot of an identifier, or the free one that it would get.
inline std::size_t KARMPEntityTable::SlotOf(std::wstring_view identifier, std::uint32_t hash) const
{
    const std::size_t last = m_slots.size() - 1;
    for (std::size_t place = hash & last;; place = (place + 1) & last) {
        const Slot& slot = m_slots[place];
        if (slot.entry == nullptr || (slot.hash == hash && slot.entry->first == identifier))
            return place;
    }
}

void KARMPEntityTable::Reserve(std::size_t count)
{
    if (count > std::numeric_limits<std::uint32_t>::max() / 4)
        throw std::length_error("KARMP entity table: too many entities");
    const std::size_t least = 2 * count + 1;
    if (least <= m_slots.size())
        return;
    std::vector<Slot> slots(std::bit_ceil(least));
    for (const Slot& slot : m_slots) {
        if (slot.entry == nullptr)
            continue;
        std::size_t place = slot.hash & (slots.size() - 1);
        while (slots[place].entry != nullptr)
            place = (place + 1) & (slots.size() - 1);
        slots[place] = slot;
    }
    m_slots = std::move(slots);
}

bool KARMPEntityTable::Set(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity)
{
    const std::size_t before = Size();
    Enter(identifier, entity);
    return Size() > before;
}

const KARMPEntityTable::Entry& KARMPEntityTable::Enter(std::wstring_view identifier,
                                                       const QOBSharedHandle<KARMPEntity>& entity)
{
    Reserve(Size() + 1);
    const std::uint32_t hash = Hash(identifier);
    Slot& slot = m_slots[SlotOf(identifier, hash)];
    if (slot.entry != nullptr)
        slot.entry->second = entity;
    else
        slot = {hash, &m_entries.emplace_back(identifier, entity)};
    return *slot.entry;
}

const QOBSharedHandle<KARMPEntity>* KARMPEntityTable::Find(std::wstring_view identifier) const
{
    if (m_slots.empty())
        return nullptr;
    const Slot& slot = m_slots[SlotOf(identifier, Hash(identifier))];
    return slot.entry != nullptr ? &slot.entry->second : nullptr;
}

std::vector<const KARMPEntityTable::Entry*> KARMPEntityTable::InOrder() const
{
    std::vector<const Entry*> entries;
    if (m_entries.empty())
        return entries;
    // Identifiers are long and mostly begin alike: what tells them apart stands in the sorted list.
    const std::size_t start = commonStart(m_entries);
    std::vector<Place> places;
    places.reserve(Size());
    for (const Entry& entry : m_entries)
        places.push_back({orderOf(std::wstring_view(entry.first).substr(start)), &entry});
    std::sort(places.begin(), places.end());
    entries.reserve(Size());
    for (const Place& place : places)
        entries.push_back(place.entry);
    return entries;
}
