#pragma once

#include "KARMPExport.h"
#include "QOBSharedObject.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace karmp {

/// Maps entities to entities by address; it counts neither.
///
/// Each 8 kB of memory that an entity begins in have a run of slots, one for as many bytes as the
/// smallest entity has, since no two begin within those. An area of 2 MB has a table of its runs,
/// and a hash table gives the areas, which are few; the runs used last are at hand without both.
/// Runs lie in the order in which they were first entered. So a walk in the order of memory, and of
/// what lies near to it, finds the slots where it found the former ones: in one hash table of
/// entities the links of a large model are a miss of the caches each.
class KARMP_API ObjectMap
{
public:
    ObjectMap();
    ~ObjectMap();
    ObjectMap(const ObjectMap&) = delete;
    ObjectMap& operator=(const ObjectMap&) = delete;

    /// What an entity is mapped to, null at first. It stays where it is.
    QOBSharedObject*& SlotOf(const QOBSharedObject* from)
    {
        const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(from) >> RunBits;
        const RecentRun& recent = m_recent[number % RecentRuns];
        return recent.number == number ? recent.slots[SlotIn(from)] : SlotOfOtherRun(from);
    }
    /// What an entity is mapped to; null when it has no entry.
    QOBSharedObject* Find(const QOBSharedObject* from) const noexcept
    {
        const Area& area = m_areas[IndexOf(AreaOf(from))];
        QOBSharedObject* const* const run = area.runs != nullptr ? area.runs[RunOf(from)] : nullptr;
        return run != nullptr ? run[SlotIn(from)] : nullptr;
    }
    /// Visits the slots of all runs.
    template <class Visit>
    void ForEachSlot(Visit visit)
    {
        for (const Block& block : m_blocks)
            for (std::size_t slot = 0; slot < block.bytes / sizeof(QOBSharedObject*); ++slot)
                visit(block.slots[slot]);
    }

private:
    static constexpr unsigned AreaBits = 21;
    static constexpr unsigned RunBits = 13;
    static constexpr std::size_t SlotBytes = 112;
    static constexpr std::size_t RunCount = std::size_t{1} << (AreaBits - RunBits);
    static constexpr std::size_t RecentRuns = 64;
    static constexpr std::size_t RunBytes = std::size_t{1} << RunBits;
    static constexpr std::size_t SlotCount = (RunBytes + SlotBytes - 1) / SlotBytes;

    struct Area
    {
        std::uintptr_t number = 0;
        QOBSharedObject*** runs = nullptr; // null where the table is free
    };
    struct RecentRun
    {
        std::uintptr_t number = UINTPTR_MAX; // of all runs of the memory
        QOBSharedObject** slots = nullptr;
    };
    // Some runs side by side.
    struct Block
    {
        QOBSharedObject** slots;
        std::size_t bytes;
    };

    static std::uintptr_t AreaOf(const QOBSharedObject* object) noexcept
    {
        return reinterpret_cast<std::uintptr_t>(object) >> AreaBits;
    }
    static std::size_t RunOf(const QOBSharedObject* object) noexcept
    {
        return (reinterpret_cast<std::uintptr_t>(object) >> RunBits) % RunCount;
    }
    static std::size_t SlotIn(const QOBSharedObject* object) noexcept
    {
        return reinterpret_cast<std::uintptr_t>(object) % RunBytes / SlotBytes;
    }
    // The index of an area in the table, or the free one for it; most of them are free.
    std::size_t IndexOf(std::uintptr_t area) const noexcept
    {
        std::size_t index = static_cast<std::size_t>(area * 0x9E3779B97F4A7C15U) >> m_hashShift;
        while (m_areas[index].number != area && m_areas[index].runs != nullptr)
            index = (index + 1) % m_areas.size();
        return index;
    }
    // The slot in a run that is not among the recent ones. It is added when there is none.
    QOBSharedObject*& SlotOfOtherRun(const QOBSharedObject* from);
    QOBSharedObject** AddRun(const QOBSharedObject* from);
    void AddArea(std::uintptr_t number);
    void AddBlock();

    using Runs = std::array<QOBSharedObject**, RunCount>;
    std::array<RecentRun, RecentRuns> m_recent;
    std::vector<Area> m_areas; // as many as a power of 2
    unsigned m_hashShift;      // leaves as many bits of a hash as number the areas
    std::vector<std::unique_ptr<Runs>> m_runs;
    std::size_t m_runCount = 0;
    std::vector<Block> m_blocks;
    QOBSharedObject** m_nextRun = nullptr; // of the last block
    std::size_t m_freeRuns = 0;
};

} // namespace karmp
