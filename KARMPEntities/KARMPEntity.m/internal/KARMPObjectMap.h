#pragma once

#include "KARMPExport.h"
#include "QOBSharedObject.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace karmp {

/// Maps entities to entities by address; it counts neither.
///
/// Each page of memory that an entity begins in has a run of slots, one for every 64 bytes, since
/// no two entities begin within those; a hash table gives the run of a page. Runs lie in the order
/// in which their pages were first entered. So a walk in the order of memory, and of what lies
/// near to it, finds the slots where it found the former ones: in one hash table of entities the
/// links of a large model are a miss of the caches each.
class KARMP_API ObjectMap
{
public:
    ObjectMap();
    ~ObjectMap();
    ObjectMap(const ObjectMap&) = delete;
    ObjectMap& operator=(const ObjectMap&) = delete;

    /// Enters what an entity is mapped to; false when that takes the place of an earlier entry.
    bool Enter(const QOBSharedObject* from, QOBSharedObject* to)
    {
        const Page& found = m_pages[IndexOf(PageOf(from))];
        QOBSharedObject*& slot =
            (found.run != nullptr ? found.run : AddRun(PageOf(from)))[SlotOf(from)];
        const bool isNew = slot == nullptr;
        slot = to;
        return isNew;
    }
    /// What an entity is mapped to; null when it has no entry.
    QOBSharedObject* Find(const QOBSharedObject* from) const noexcept
    {
        QOBSharedObject* const* const run = m_pages[IndexOf(PageOf(from))].run;
        return run != nullptr ? run[SlotOf(from)] : nullptr;
    }

private:
    static constexpr unsigned PageBits = 12;
    static constexpr unsigned SlotBits = 6;
    static constexpr std::size_t SlotCount = std::size_t{1} << (PageBits - SlotBits);

    struct Page
    {
        std::uintptr_t number = 0;
        QOBSharedObject** run = nullptr; // null where the table is free
    };
    // Some runs side by side.
    struct Block
    {
        QOBSharedObject** slots;
        std::size_t bytes;
    };

    static std::uintptr_t PageOf(const QOBSharedObject* object) noexcept
    {
        return reinterpret_cast<std::uintptr_t>(object) >> PageBits;
    }
    static std::size_t SlotOf(const QOBSharedObject* object) noexcept
    {
        return (reinterpret_cast<std::uintptr_t>(object) >> SlotBits) % SlotCount;
    }
    // The place of a page in the table, or the free one for it; at least half of them are free.
    std::size_t IndexOf(std::uintptr_t page) const noexcept
    {
        const std::size_t last = m_pages.size() - 1;
        std::size_t index = (page * 0x9E3779B97F4A7C15U >> 32U) & last;
        while (m_pages[index].number != page && m_pages[index].run != nullptr)
            index = (index + 1) & last;
        return index;
    }
    QOBSharedObject** AddRun(std::uintptr_t page);
    void AddBlock();

    std::vector<Page> m_pages; // as many as a power of 2
    std::size_t m_pageCount = 0;
    std::vector<Block> m_blocks;
    std::size_t m_freeRuns = 0; // of the last block
};

} // namespace karmp
