#include "KARMPHandleIndex.h"

#include <bit>
#include <utility>

namespace {

// After this, adding one entry at the end does not allocate.
template <class T>
void ReserveOne(std::vector<T>& entries)
{
    if (entries.size() == entries.capacity())
        entries.reserve(2 * entries.size() + 1);
}

} // namespace

namespace karmp {

void HandleIndex::Reserve(const QOBSharedBase* handles, std::size_t count)
{
    if (2 * count <= m_buckets.size())
        return;
    m_buckets = std::vector<std::uint32_t>(std::bit_ceil(2 * count));
    for (std::uint32_t slot = 0; slot < m_slots; ++slot) {
        const bool last = m_following.empty() || m_following[slot] <= slot;
        if (handles[slot] && last)
            m_buckets[BucketOf(handles, handles[slot]._getReferent())] = slot + 1;
    }
}

bool HandleIndex::Append(const QOBSharedBase* handles, std::size_t count,
                         const QOBSharedObject* object, bool isOnce)
{
    if (!m_counts.empty())
        ReserveOne(m_counts);
    Reserve(handles, count + 1);
    std::uint32_t& bucket = m_buckets[BucketOf(handles, object)];
    if (bucket != 0 && isOnce)
        return false;
    if (bucket != 0 && m_following.empty())
        MakeRings();
    if (!m_following.empty()) {
        ReserveOne(m_following);
        m_following.push_back(bucket != 0 ? std::exchange(m_following[bucket - 1], m_slots)
                                          : m_slots);
    }
    bucket = ++m_slots;
    if (!m_counts.empty())
        PushCount();
    return true;
}

// Every slot a ring of its own.
void HandleIndex::MakeRings()
{
    m_following.reserve(m_slots + 1);
    for (std::uint32_t slot = 0; slot < m_slots; ++slot)
        m_following.push_back(slot);
}

void HandleIndex::Replace(const QOBSharedBase* handles, std::size_t slot,
                          const QOBSharedObject* object)
{
    if (handles[slot] == object)
        return;
    const auto replaced = static_cast<std::uint32_t>(slot);
    if (m_following.empty() && m_buckets[BucketOf(handles, object)] != 0)
        MakeRings();
    Unlink(handles, slot);
    std::uint32_t& bucket = m_buckets[BucketOf(handles, object)];
    if (bucket == 0) {
        bucket = replaced + 1;
        if (!m_following.empty())
            m_following[slot] = replaced;
        return;
    }
    std::uint32_t before = bucket - 1;
    while (replaced < bucket - 1 && m_following[before] < replaced)
        before = m_following[before];
    m_following[slot] = std::exchange(m_following[before], replaced);
    if (replaced > bucket - 1)
        bucket = replaced + 1;
}

void HandleIndex::Remove(const QOBSharedBase* handles, std::size_t slot) noexcept
{
    if (!m_counts.empty())
        LowerCount(slot);
    Unlink(handles, slot);
}

void HandleIndex::Unlink(const QOBSharedBase* handles, std::size_t slot) noexcept
{
    const std::size_t bucket = BucketOf(handles, handles[slot]._getReferent());
    if (m_following.empty() || m_following[slot] == slot) {
        Free(handles, bucket);
        return;
    }
    std::uint32_t before = m_buckets[bucket] - 1;
    while (m_following[before] != slot)
        before = m_following[before];
    m_following[before] = m_following[slot];
    if (m_buckets[bucket] == slot + 1)
        m_buckets[bucket] = before + 1;
}

// Entries behind a bucket that becomes free move up as far as their own hashes allow, so that no
// lookup ends early.
void HandleIndex::Free(const QOBSharedBase* handles, std::size_t bucket) noexcept
{
    const std::size_t last = m_buckets.size() - 1;
    for (std::size_t next = Next(bucket); m_buckets[next] != 0; next = Next(next)) {
        const std::size_t home = Home(handles[m_buckets[next] - 1]._getReferent());
        if (((next - home) & last) >= ((next - bucket) & last)) {
            m_buckets[bucket] = m_buckets[next];
            bucket = next;
        }
    }
    m_buckets[bucket] = 0;
}

void HandleIndex::Pop() noexcept
{
    --m_slots;
    if (!m_counts.empty())
        m_counts.pop_back();
    if (!m_following.empty())
        m_following.pop_back();
}

std::size_t HandleIndex::SlotAt(const QOBSharedBase* handles, std::size_t position)
{
    MakeCounts(handles);
    std::size_t slot = 0;
    for (std::size_t step = std::bit_floor(m_counts.size()); step > 0; step >>= 1) {
        if (slot + step <= m_counts.size() && m_counts[slot + step - 1] <= position) {
            slot += step;
            position -= m_counts[slot - 1];
        }
    }
    return slot;
}

std::size_t HandleIndex::PositionOf(const QOBSharedBase* handles, std::size_t slot)
{
    MakeCounts(handles);
    std::size_t position = 0;
    for (std::size_t node = slot; node > 0; node &= node - 1)
        position += m_counts[node - 1];
    return position;
}

void HandleIndex::MakeCounts(const QOBSharedBase* handles)
{
    if (!m_counts.empty())
        return;
    m_counts.reserve(m_slots);
    for (std::size_t slot = 0; slot < m_slots; ++slot)
        PushCount();
    for (std::size_t slot = 0; slot < m_slots; ++slot)
        if (!handles[slot])
            LowerCount(slot);
}

void HandleIndex::PushCount()
{
    const std::size_t node = m_counts.size() + 1;
    std::uint32_t count = 1;
    for (std::size_t step = 1; (node & step) == 0; step <<= 1)
        count += m_counts[node - step - 1];
    m_counts.push_back(count);
}

void HandleIndex::LowerCount(std::size_t slot) noexcept
{
    for (std::size_t node = slot + 1; node <= m_counts.size(); node += node & (~node + 1))
        --m_counts[node - 1];
}

} // namespace karmp
