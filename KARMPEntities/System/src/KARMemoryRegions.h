#pragma once

#include "KARLargePages.h"

#include <cstddef>
#include <cstdint>
#include <mutex>

namespace kar {

/// Allocates parts of one size, cut from regions that the system can map by large pages.
///
/// A large model is written once from its start to its end, and fresh memory costs a page fault a
/// page: with small pages, these took a third of a build and more than that of a clone. A large
/// page besides spares a visit in another order than memory's most misses of the address
/// translation.
///
/// A region returns to the heap once it is empty, unless it is the only one in use that has a free
/// part. Any thread may free what another allocated.
class MemoryRegions
{
public:
    /// The bytes of a region, which is aligned to them.
    static constexpr std::size_t RegionSize = LargePage;
    static constexpr std::size_t PartsPerRegion = 16;
    static constexpr std::size_t Alignment = 16;

private:
    // The header of a region; its parts follow.
    struct Region
    {
        Region* previous = nullptr; // among the regions that have a free part
        Region* next = nullptr;
        std::uint32_t freeParts = (1U << PartsPerRegion) - 1; // a bit for each
    };
    static constexpr std::size_t HeaderSize = 64;

public:
    /// The bytes of a part.
    static constexpr std::size_t PartSize =
        (RegionSize - HeaderSize) / PartsPerRegion / Alignment * Alignment;

    constexpr MemoryRegions() = default;
    /// Frees the empty region; what is in use stays valid.
    ~MemoryRegions();
    MemoryRegions(const MemoryRegions&) = delete;
    MemoryRegions& operator=(const MemoryRegions&) = delete;

    /// Memory of PartSize bytes; throws std::bad_alloc.
    void* Allocate();
    /// Frees memory of Allocate.
    void Free(void* part) noexcept;
    /// Bytes of all regions.
    std::size_t HeldBytes();

private:
    void Open(Region* region) noexcept;
    void Close(Region* region) noexcept;
    void Drop(Region* region) noexcept;

    std::mutex m_mutex;
    Region* m_open = nullptr; // the regions that have a free part
    std::size_t m_heldBytes = 0;
};

} // namespace kar
