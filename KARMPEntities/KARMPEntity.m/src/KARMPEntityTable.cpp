#include "KARMPEntityTable.h"

#include "KARMPEntity.h"
#include "KARTextHash.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <stdexcept>
#include <utility>

namespace {

using Entry = KARMPEntityTable::Entry;

bool IsAscii(std::wstring_view text)
{
    return std::all_of(
        text.begin(), text.end(),
        [](wchar_t character) { return static_cast<std::uint32_t>(character) < 0x80U; });
}

template <class Character>
std::uint32_t HashOf(std::basic_string_view<Character> text) noexcept
{
    return static_cast<std::uint32_t>(kar::HashText(text).hash >> 32U);
}

struct Ranked
{
    std::uint64_t order;
    const Entry* entry;
};

} // namespace

std::wstring KARMPEntityTable::Entry::Identifier() const
{
    const std::string_view narrow = Narrow();
    return m_isNarrow ? std::wstring(narrow.begin(), narrow.end()) : std::wstring(Wide());
}

bool KARMPEntityTable::Entry::Is(std::wstring_view text) const
{
    if (!m_isNarrow)
        return Wide() == text;
    const std::string_view narrow = Narrow();
    return std::equal(narrow.begin(), narrow.end(), text.begin(), text.end(),
                      [](char own, wchar_t other) { return static_cast<wchar_t>(own) == other; });
}

wchar_t KARMPEntityTable::Entry::At(std::size_t index) const
{
    return m_isNarrow ? static_cast<wchar_t>(Narrow()[index]) : Wide()[index];
}

// The eight characters from `start` in a number whose order is theirs. It stops at a character that
// is no byte, so that what follows does not count.
std::uint64_t KARMPEntityTable::Entry::Order(std::size_t start) const
{
    std::uint64_t order = 0;
    int shift = 64;
    for (std::size_t index = start; index < m_size && shift > 0; ++index) {
        shift -= 8;
        const wchar_t character = At(index);
        if (character <= 0)
            break;
        const auto value = std::min<std::uint64_t>(static_cast<std::uint64_t>(character), 0xFFU);
        order |= value << shift;
        if (value == 0xFFU)
            break;
    }
    return order;
}

bool KARMPEntityTable::Entry::ComesBefore(const Entry& other) const
{
    if (m_isNarrow && other.m_isNarrow)
        return Narrow() < other.Narrow();
    return Identifier() < other.Identifier();
}

KARMPEntityTable::KARMPEntityTable() = default;
KARMPEntityTable::~KARMPEntityTable() = default;

KARMPEntityTable::KARMPEntityTable(
    const std::map<std::wstring, QOBSharedHandle<KARMPEntity>>& entities)
{
    Reserve(entities.size());
    for (const auto& [identifier, entity] : entities)
        Enter(identifier, entity);
}

// The slot of an identifier, or the free one for it.
template <class Text>
std::size_t KARMPEntityTable::SlotOf(Text identifier, std::uint32_t hash) const
{
    const std::size_t last = m_slots.size() - 1;
    for (std::size_t index = hash & last;; index = (index + 1) & last) {
        const Slot& slot = m_slots[index];
        if (slot.entry == nullptr || (slot.hash == hash && slot.entry->Is(identifier)))
            return index;
    }
}

void KARMPEntityTable::Take(std::uint32_t hash, Entry& entry) const
{
    std::size_t index = hash & (m_slots.size() - 1);
    while (m_slots[index].entry != nullptr)
        index = (index + 1) & (m_slots.size() - 1);
    m_slots[index] = {hash, &entry};
}

void KARMPEntityTable::Reserve(std::size_t count) const
{
    if (count > std::numeric_limits<std::uint32_t>::max() / 4)
        throw std::length_error("KARMP entity table: too many entities");
    const std::size_t least = 2 * count + 1;
    if (least <= m_slots.size())
        return;
    const std::vector<Slot> former =
        std::exchange(m_slots, std::vector<Slot>(std::bit_ceil(least)));
    for (const Slot& slot : former)
        if (slot.entry != nullptr)
            Take(slot.hash, *slot.entry);
    if (former.empty())
        for (Entry& entry : m_entries)
            Take(entry.m_isNarrow ? HashOf(entry.Narrow()) : HashOf(entry.Wide()), entry);
}

void KARMPEntityTable::UseNumbers(const karmp::DocumentRecords& document, std::size_t count)
{
    m_document = &document;
    m_numbered.assign(count, nullptr);
}

bool KARMPEntityTable::Set(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity)
{
    const std::size_t before = Size();
    Enter(identifier, entity);
    return Size() > before;
}

KARMPEntityTable::Entry& KARMPEntityTable::Append(const void* text, std::size_t size, bool isNarrow)
{
    Entry& entry = m_entries.emplace_back();
    entry.m_text = text;
    entry.m_size = size;
    entry.m_isNarrow = isNarrow;
    return entry;
}

template <class Text>
KARMPEntityTable::Entry& KARMPEntityTable::EnterText(Text identifier,
                                                     const QOBSharedHandle<KARMPEntity>& entity)
{
    Reserve(Size() + 1);
    const std::uint32_t hash = HashOf(identifier);
    Slot& slot = m_slots[SlotOf(identifier, hash)];
    if (slot.entry == nullptr) {
        using Character = typename Text::value_type;
        const std::size_t size = identifier.size();
        auto* const text = static_cast<Character*>(m_texts.Allocate(size * sizeof(Character)));
        std::copy(identifier.begin(), identifier.end(), text);
        slot = {hash, &Append(text, size, sizeof(Character) == 1)};
    }
    slot.entry->m_entity = entity;
    return *slot.entry;
}

const KARMPEntityTable::Entry& KARMPEntityTable::Enter(std::uint32_t number,
                                                       std::string_view identifier,
                                                       const QOBSharedHandle<KARMPEntity>& entity)
{
    Entry*& entry = m_numbered[number];
    if (entry == nullptr)
        entry = m_slots.empty() ? &Append(identifier.data(), identifier.size(), true)
                                : &EnterText(identifier, entity);
    entry->m_entity = entity;
    return *entry;
}

const KARMPEntityTable::Entry& KARMPEntityTable::Enter(std::wstring_view identifier,
                                                       const QOBSharedHandle<KARMPEntity>& entity)
{
    if (IsAscii(identifier)) {
        const std::string narrow(identifier.begin(), identifier.end());
        return EnterText(std::string_view(narrow), entity);
    }
    return EnterText(identifier, entity);
}

const KARMPEntityTable::Entry& KARMPEntityTable::Enter(const karmp::ReadText& identifier,
                                                       const QOBSharedHandle<KARMPEntity>& entity)
{
    return identifier.IsAscii() ? EnterText(identifier.Ascii(), entity)
                                : Enter(identifier.View(), entity);
}

template <class Text>
const QOBSharedHandle<KARMPEntity>* KARMPEntityTable::FindText(Text identifier) const
{
    if (m_entries.empty())
        return nullptr;
    if (m_slots.empty())
        Reserve(Size());
    const Slot& slot = m_slots[SlotOf(identifier, HashOf(identifier))];
    return slot.entry != nullptr ? &slot.entry->m_entity : nullptr;
}

const QOBSharedHandle<KARMPEntity>* KARMPEntityTable::Find(std::wstring_view identifier) const
{
    return FindText(identifier);
}

const QOBSharedHandle<KARMPEntity>* KARMPEntityTable::Find(const karmp::ReadText& identifier) const
{
    return identifier.IsAscii() ? FindText(identifier.Ascii()) : FindText(identifier.View());
}

std::vector<const KARMPEntityTable::Entry*> KARMPEntityTable::InOrder() const
{
    std::vector<const Entry*> entries;
    if (m_entries.empty())
        return entries;
    // Identifiers are long and mostly begin alike: the sorted numbers begin where they differ.
    const Entry& any = m_entries.front();
    std::size_t start = any.m_size;
    for (const Entry& entry : m_entries) {
        start = std::min(start, entry.m_size);
        std::size_t same = 0;
        while (same < start && entry.At(same) == any.At(same))
            ++same;
        start = same;
    }
    std::vector<Ranked> ranked;
    ranked.reserve(Size());
    for (const Entry& entry : m_entries)
        ranked.push_back({entry.Order(start), &entry});
    std::sort(ranked.begin(), ranked.end(), [](const Ranked& left, const Ranked& right) {
        return left.order != right.order ? left.order < right.order
                                         : left.entry->ComesBefore(*right.entry);
    });
    entries.reserve(Size());
    for (const Ranked& each : ranked)
        entries.push_back(each.entry);
    return entries;
}
