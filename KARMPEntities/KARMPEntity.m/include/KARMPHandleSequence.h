// An ordered sequence of handles that stays fast when it grows long.
#pragma once

#include "KARMPExport.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <memory>
#include <vector>

/// Short sequences are scanned. A long one keeps an index beside the handles, so that a test for an
/// entry, appending, removing and access by position stay cheap whatever the order of the calls.
class KARMP_API KARMPHandleSequence
{
public:
    KARMPHandleSequence();
    /// A copy holds the same referents in the same order.
    KARMPHandleSequence(const KARMPHandleSequence& source);
    KARMPHandleSequence(KARMPHandleSequence&&) noexcept;
    ~KARMPHandleSequence();
    KARMPHandleSequence& operator=(const KARMPHandleSequence& source);
    KARMPHandleSequence& operator=(KARMPHandleSequence&&) noexcept;

    /// Number of entries.
    std::size_t Count() const noexcept { return m_slots.size() - m_holes; }
    /// True when an entry refers to the object.
    bool Contains(const QOBSharedObject* object) const;
    /// The entry at a position below Count().
    const QOBSharedBase& At(std::size_t position) const;
    /// Adds an entry behind the others; a null handle is not added.
    void Append(const QOBSharedBase& handle);
    /// Adds an entry before a position, or behind the others when there are not so many.
    void Insert(std::size_t position, const QOBSharedBase& handle);
    /// Takes out the first entry that refers to the object and keeps the order of the others.
    /// Returns its former position when a caller wants it; false when there is no such entry.
    bool Remove(const QOBSharedObject* object, std::size_t* position = nullptr);
    /// Takes out the entry at a position below Count() and returns it.
    QOBSharedBase Take(std::size_t position);
    /// Takes out all entries, first to last.
    void Clear();

private:
    struct Index;

    std::size_t SlotOf(const QOBSharedObject* object) const;
    std::size_t SlotAt(std::size_t position) const;
    std::size_t PositionOf(std::size_t slot) const;
    void Empty(std::size_t slot);
    void BuildIndex();
    void RebuildIndex() noexcept;
    void Compact();

    std::vector<QOBSharedBase> m_slots; // an empty handle is a hole
    std::size_t m_holes = 0;
    std::unique_ptr<Index> m_index; // only while the sequence is long
};
