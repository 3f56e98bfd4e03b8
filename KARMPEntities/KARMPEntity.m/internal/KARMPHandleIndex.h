#pragma once

#include "KARMPExport.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace karmp {

/// Finds the entries of a long handle sequence.
///
/// The handles stand in the sequence's slots; an entry that was removed leaves a hole, a null
/// handle. A hash table gives the slot of a referent, and a binary indexed tree of entry counts,
/// made when a position is asked for while there are holes, gives the slot of a position. With n
/// entries, on average:
///
///     operation              short sequence, scanned   long sequence, with this index
///     test for an entry      n                         1
///     append                 1                         1, log n once there is a tree
///     replace                1                         1
///     remove                 n                         1, log n once there is a tree
///     access by position     1                         1, log n while there are holes
///     first position asked   -                         n, once after holes appeared
///     position of an entry   n                         1, log n while there are holes
///     insert                 n                         n, the index is built anew
///
/// Removing closes the holes, at a cost of n, when they outnumber the entries. Removing one of k
/// entries with the same referent costs k more. A member that allocates changes nothing when that
/// fails.
class KARMP_API HandleIndex
{
    static constexpr unsigned RunBits = 12;
    static constexpr unsigned ObjectBits = 6;
    static constexpr std::size_t RunSize = std::size_t{1} << RunBits;

public:
    /// A hash of objects, for tables of a power of 2. The objects of a page of memory hash into one
    /// run of buckets, in the order of their addresses, so that objects created one after the other
    /// have adjacent buckets. Objects smaller than 64 bytes would share buckets, but entities are
    /// larger.
    static std::size_t HashOf(const QOBSharedObject* object) noexcept
    {
        const auto address = reinterpret_cast<std::uintptr_t>(object);
        const std::uint64_t run = (address >> RunBits) * 0x9E3779B97F4A7C15U >> 32U;
        return static_cast<std::size_t>((run << (RunBits - ObjectBits)) +
                                        (address % RunSize >> ObjectBits));
    }
    /// Number of slots, holes included.
    std::size_t SlotCount() const noexcept { return m_slots; }
    /// The first slot of a referent, `none` when it has none.
    std::size_t Find(const QOBSharedBase* handles, const QOBSharedObject* object,
                     std::size_t none) const
    {
        const std::uint32_t bucket = m_buckets[BucketOf(handles, object)];
        if (bucket == 0)
            return none;
        return m_following.empty() ? bucket - 1 : m_following[bucket - 1];
    }
    /// Makes the hash table large enough for a number of entries.
    void Reserve(const QOBSharedBase* handles, std::size_t count);
    /// Enters the slot behind all others, whose handle is written afterwards. `count` is the number
    /// of entries so far. False, with nothing entered, for a referent that has a slot already and
    /// is to have it once.
    bool Append(const QOBSharedBase* handles, std::size_t count, const QOBSharedObject* object,
                bool isOnce = false);
    /// Enters another referent for a slot whose handle is replaced afterwards. Replacing by one of
    /// k entries with the same referent costs k more.
    void Replace(const QOBSharedBase* handles, std::size_t slot, const QOBSharedObject* object);
    /// Takes out a slot whose handle is still there and becomes a hole afterwards.
    void Remove(const QOBSharedBase* handles, std::size_t slot) noexcept;
    /// Forgets the last slot, which is a hole.
    void Pop() noexcept;
    /// The slot of the entry at a position below the number of entries.
    std::size_t SlotAt(const QOBSharedBase* handles, std::size_t position);
    /// The position of the entry in a slot.
    std::size_t PositionOf(const QOBSharedBase* handles, std::size_t slot);

private:
    std::size_t Home(const QOBSharedObject* object) const noexcept
    {
        return HashOf(object) & (m_buckets.size() - 1);
    }
    std::size_t Next(std::size_t bucket) const noexcept
    {
        return (bucket + 1) & (m_buckets.size() - 1);
    }
    // The bucket of a referent, or the free one for it.
    std::size_t BucketOf(const QOBSharedBase* handles, const QOBSharedObject* object) const noexcept
    {
        std::size_t bucket = Home(object);
        while (m_buckets[bucket] != 0 && handles[m_buckets[bucket] - 1] != object)
            bucket = Next(bucket);
        return bucket;
    }
    void Free(const QOBSharedBase* handles, std::size_t bucket) noexcept;
    void MakeRings();
    void Unlink(const QOBSharedBase* handles, std::size_t slot) noexcept;
    void MakeCounts(const QOBSharedBase* handles);
    void PushCount();
    void LowerCount(std::size_t slot) noexcept;

    // One more than the last slot of a referent, in the bucket of its hash or behind it; 0 is a
    // free bucket. At least half of the buckets are free, so that a lookup probes few of them.
    std::vector<std::uint32_t> m_buckets = std::vector<std::uint32_t>(2);
    // Empty, or, once a referent is listed twice, for each slot the next one with its referent:
    // rings, so that the last slot leads to the first.
    std::vector<std::uint32_t> m_following;
    std::vector<std::uint32_t> m_counts; // the tree: empty, or one node a slot
    std::uint32_t m_slots = 0;
};

} // namespace karmp
