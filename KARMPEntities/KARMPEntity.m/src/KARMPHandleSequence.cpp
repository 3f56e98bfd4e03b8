#include "KARMPHandleSequence.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <new>
#include <unordered_map>
#include <utility>

namespace {

// Up to here a scan of the handles beats the upkeep of an index.
constexpr std::size_t LongestScanned = 48;

// Makes the next entry at the end cost no memory.
template <class T>
void makeRoom(std::vector<T>& entries)
{
    if (entries.size() == entries.capacity())
        entries.reserve(2 * entries.size() + 1);
}

} // namespace

// Where each referent stands, and, once somebody asks for a position while there are holes, how
// many entries the slots hold: a binary indexed tree, so that a hole costs no shift of what is
// behind it.
struct KARMPHandleSequence::Index
{
    std::unordered_multimap<const QOBSharedObject*, std::size_t> slots;
    std::vector<std::uint32_t> counts; // empty, or one node a slot

    void Push()
    {
        const std::size_t node = counts.size() + 1;
        std::uint32_t count = 1;
        for (std::size_t step = 1; (node & step) == 0; step <<= 1)
            count += counts[node - step - 1];
        counts.push_back(count);
    }
    void Lower(std::size_t slot)
    {
        for (std::size_t node = slot + 1; node <= counts.size(); node += node & (~node + 1))
            --counts[node - 1];
    }
    std::size_t CountBefore(std::size_t slot) const
    {
        std::size_t count = 0;
        for (std::size_t node = slot; node > 0; node &= node - 1)
            count += counts[node - 1];
        return count;
    }
    std::size_t SlotAt(std::size_t position) const
    {
        std::size_t slot = 0;
        for (std::size_t step = std::bit_floor(counts.size()); step > 0; step >>= 1) {
            if (slot + step <= counts.size() && counts[slot + step - 1] <= position) {
                slot += step;
                position -= counts[slot - 1];
            }
        }
        return slot;
    }
};

KARMPHandleSequence::KARMPHandleSequence() = default;
KARMPHandleSequence::KARMPHandleSequence(KARMPHandleSequence&& other) noexcept
    : m_slots(std::move(other.m_slots)),
      m_holes(std::exchange(other.m_holes, 0)),
      m_index(std::move(other.m_index))
{
    other.m_slots.clear();
}
KARMPHandleSequence::~KARMPHandleSequence() = default;

KARMPHandleSequence::KARMPHandleSequence(const KARMPHandleSequence& source)
{
    m_slots.reserve(source.Count());
    for (const QOBSharedBase& handle : source.m_slots) {
        if (handle)
            m_slots.push_back(handle);
    }
    if (m_slots.size() > LongestScanned)
        BuildIndex();
}

KARMPHandleSequence& KARMPHandleSequence::operator=(const KARMPHandleSequence& source)
{
    if (this != &source)
        *this = KARMPHandleSequence(source);
    return *this;
}

KARMPHandleSequence& KARMPHandleSequence::operator=(KARMPHandleSequence&& other) noexcept
{
    KARMPHandleSequence taken(std::move(other));
    std::swap(m_slots, taken.m_slots);
    std::swap(m_holes, taken.m_holes);
    std::swap(m_index, taken.m_index);
    return *this;
}

bool KARMPHandleSequence::Contains(const QOBSharedObject* object) const
{
    return SlotOf(object) != m_slots.size();
}

const QOBSharedBase& KARMPHandleSequence::At(std::size_t position) const
{
    return m_slots[SlotAt(position)];
}

void KARMPHandleSequence::Append(const QOBSharedBase& handle)
{
    if (!handle)
        return;
    if (m_index == nullptr && m_slots.size() >= LongestScanned)
        BuildIndex();
    if (m_index != nullptr) {
        // Room comes first, so that nothing is half done when memory ends.
        makeRoom(m_slots);
        if (!m_index->counts.empty())
            makeRoom(m_index->counts);
        m_index->slots.emplace(handle._getReferent(), m_slots.size());
        if (!m_index->counts.empty())
            m_index->Push();
    }
    m_slots.push_back(handle);
}

void KARMPHandleSequence::Insert(std::size_t position, const QOBSharedBase& handle)
{
    if (position >= Count()) {
        Append(handle);
        return;
    }
    if (!handle)
        return;
    Compact();
    m_slots.insert(m_slots.begin() + static_cast<std::ptrdiff_t>(position), handle);
    if (m_index != nullptr || m_slots.size() > LongestScanned)
        RebuildIndex();
}

bool KARMPHandleSequence::Remove(const QOBSharedObject* object, std::size_t* position)
{
    const std::size_t slot = SlotOf(object);
    if (slot == m_slots.size())
        return false;
    if (position != nullptr)
        *position = PositionOf(slot);
    Empty(slot);
    return true;
}

QOBSharedBase KARMPHandleSequence::Take(std::size_t position)
{
    const std::size_t slot = SlotAt(position);
    QOBSharedBase handle = m_slots[slot];
    // With an entry listed twice the index knows both slots; the one at this position goes.
    Empty(slot);
    return handle;
}

void KARMPHandleSequence::Clear()
{
    // What a referent's destructor does may reach this sequence again, so it is empty by then.
    m_index.reset();
    m_holes = 0;
    const std::vector<QOBSharedBase> released = std::exchange(m_slots, {});
}

std::size_t KARMPHandleSequence::SlotOf(const QOBSharedObject* object) const
{
    if (object == nullptr)
        return m_slots.size();
    if (m_index == nullptr) {
        return static_cast<std::size_t>(
            std::find_if(m_slots.begin(), m_slots.end(),
                         [object](const QOBSharedBase& handle) { return handle == object; }) -
            m_slots.begin());
    }
    std::size_t first = m_slots.size();
    const auto [begin, end] = m_index->slots.equal_range(object);
    for (auto entry = begin; entry != end; ++entry)
        first = std::min(first, entry->second);
    return first;
}

std::size_t KARMPHandleSequence::SlotAt(std::size_t position) const
{
    if (m_holes == 0)
        return position;
    if (m_index->counts.empty()) {
        m_index->counts.reserve(m_slots.size());
        for (std::size_t slot = 0; slot < m_slots.size(); ++slot)
            m_index->Push();
        for (std::size_t slot = 0; slot < m_slots.size(); ++slot) {
            if (!m_slots[slot])
                m_index->Lower(slot);
        }
    }
    return m_index->SlotAt(position);
}

std::size_t KARMPHandleSequence::PositionOf(std::size_t slot) const
{
    if (m_holes == 0)
        return slot;
    static_cast<void>(SlotAt(0)); // makes the counts
    return m_index->CountBefore(slot);
}

void KARMPHandleSequence::Empty(std::size_t slot)
{
    const QOBSharedBase released = m_slots[slot]; // goes when this sequence is in order again
    if (m_index == nullptr) {
        m_slots.erase(m_slots.begin() + static_cast<std::ptrdiff_t>(slot));
        return;
    }
    const auto [begin, end] = m_index->slots.equal_range(released._getReferent());
    m_index->slots.erase(
        std::find_if(begin, end, [slot](const auto& entry) { return entry.second == slot; }));
    m_slots[slot].detach();
    ++m_holes;
    if (!m_index->counts.empty())
        m_index->Lower(slot);
    while (!m_slots.empty() && !m_slots.back()) {
        m_slots.pop_back();
        --m_holes;
        if (!m_index->counts.empty())
            m_index->counts.pop_back();
    }
    if (m_holes > LongestScanned && 2 * m_holes > m_slots.size())
        Compact();
}

void KARMPHandleSequence::BuildIndex()
{
    auto index = std::make_unique<Index>();
    index->slots.reserve(m_slots.size());
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot)
        index->slots.emplace(m_slots[slot]._getReferent(), slot);
    m_index = std::move(index);
}

// Without memory for an index the handles are scanned, until the next entry makes one.
void KARMPHandleSequence::RebuildIndex() noexcept
{
    m_index.reset();
    try {
        BuildIndex();
    } catch (const std::bad_alloc&) {
        m_index.reset();
    }
}

void KARMPHandleSequence::Compact()
{
    if (m_holes == 0)
        return;
    std::erase_if(m_slots, [](const QOBSharedBase& handle) { return !handle; });
    m_holes = 0;
    RebuildIndex();
}
