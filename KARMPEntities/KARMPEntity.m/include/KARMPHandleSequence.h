#pragma once

#include "KARMPExport.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace karmp {
class HandleIndex;
class LinkPlacer;
} // namespace karmp

/// An ordered sequence of handles of entities (KARMPEntity) that stays fast when it grows long.
///
/// Short sequences are scanned. A long one keeps an index beside the handles, so that a test for an
/// entry, appending, removing and access by position stay cheap whatever the order of the calls.
/// An empty one is a null pointer, since most of the sequences of a model are empty.
class KARMP_API KARMPHandleSequence
{
public:
    KARMPHandleSequence() noexcept = default;
    /// A copy holds the same referents in the same order.
    KARMPHandleSequence(const KARMPHandleSequence& source);
    KARMPHandleSequence(KARMPHandleSequence&&) noexcept = default;
    ~KARMPHandleSequence() = default;
    KARMPHandleSequence& operator=(const KARMPHandleSequence& source);
    KARMPHandleSequence& operator=(KARMPHandleSequence&&) noexcept;

    /// Number of entries.
    std::size_t Count() const noexcept { return m_block != nullptr ? m_block->count : 0; }
    /// True when an entry refers to the object.
    bool Contains(const QOBSharedObject* object) const;
    /// The position of the first entry that refers to the object; Count() when none does.
    std::size_t Find(const QOBSharedObject* object) const;
    /// The entry at a position below Count().
    const QOBSharedBase& At(std::size_t position) const;
    /// The entries from a position below Count() on that lie side by side: all of them, or one in a
    /// sequence that has holes.
    std::span<const QOBSharedBase> From(std::size_t position) const;
    /// Adds an entry behind the others; a null handle is not added.
    void Append(const QOBSharedBase& handle);
    /// The same unless an entry refers to the same object; true when it was added.
    bool AppendOnce(const QOBSharedBase& handle);
    /// Append for a referent that is known not to be listed. A sequence that grows long this way
    /// gets its index when it is first asked for.
    void AppendNew(QOBSharedBase&& handle);
    /// Makes links to the duplicates of another sequence's entries the entries of this one, those
    /// that wait for a duplicate included. When the placer drops these they are null.
    void PlaceLinks(const KARMPHandleSequence& source, karmp::LinkPlacer& placer);
    /// True when PlaceLinks placed an entry that was dropped.
    bool HasDroppedLinks() const noexcept;
    /// Allocates at once what that number of entries takes.
    void Reserve(std::size_t count);
    /// Adds an entry before a position, or behind the others when there are not so many.
    void Insert(std::size_t position, const QOBSharedBase& handle);
    /// Replaces the entry at a position below Count(); a null handle replaces nothing.
    void Replace(std::size_t position, const QOBSharedBase& handle);
    /// Takes out the first entry that refers to the object and keeps the order of the others.
    /// Returns its former position when a caller wants it; false when there is no such entry.
    bool Remove(const QOBSharedObject* object, std::size_t* position = nullptr);
    /// Takes out the entry at a position below Count() and returns it.
    QOBSharedBase Take(std::size_t position);
    /// Takes out all entries, first to last.
    void Clear();

private:
    /// Header of the allocated block; the slots follow it, and a pointer to the index those of a
    /// block that is large enough for a long sequence.
    struct Block
    {
        std::uint32_t count = 0;
        std::uint32_t capacity = 0;
    };
    /// Releases the handles, first to last.
    struct KARMP_API End
    {
        void operator()(Block* block) const noexcept;
    };

    // These are inline where they are used, in one source.
    static inline std::size_t BlockSize(std::size_t capacity) noexcept;
    static inline QOBSharedBase* Slots(Block* block) noexcept;
    static inline karmp::HandleIndex*& IndexOf(Block* block) noexcept;
    static inline karmp::HandleIndex* GetIndex(const Block* block) noexcept;
    static inline std::size_t SlotCount(const Block* block) noexcept;
    static inline void PrefetchReleased(const QOBSharedBase* slots, std::size_t slot,
                                        std::size_t count) noexcept;
    inline QOBSharedBase* Slots() const noexcept;
    inline std::size_t SlotCount() const noexcept;
    inline karmp::HandleIndex* GetIndex() const noexcept;
    inline std::size_t SlotOf(const QOBSharedObject* object) const;
    inline void EnsureFreeSlot();

    void Allocate(std::size_t capacity);
    std::size_t SlotAt(std::size_t position) const;
    std::size_t PositionOf(std::size_t slot) const;
    QOBSharedBase Extract(std::size_t slot);
    void BuildIndex() const;
    void EnsureIndex() const noexcept;
    void DropIndex() const noexcept;
    void RebuildIndex() const noexcept;
    void Compact();

    std::unique_ptr<Block, End> m_block;
};
