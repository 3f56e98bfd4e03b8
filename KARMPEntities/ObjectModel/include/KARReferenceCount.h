// Arithmetic on counts of references, which costs less in a process with one thread.
#pragma once

#include "KARPlatformExport.h"
#include "KARSingleThread.h"

#include <atomic>
#include <cstdint>

namespace kar {

/// Adds to a count, modulo 2^32, and returns what it was before. Atomic where another thread may
/// count, too: a locked instruction takes several times as long as a plain one.
inline std::uint32_t Add(std::atomic<std::uint32_t>& count, std::uint32_t number,
                         std::memory_order order) noexcept
{
    if (!IsSingleThreaded())
        return count.fetch_add(number, order);
    const std::uint32_t before = count.load(std::memory_order_relaxed);
    count.store(before + number, std::memory_order_relaxed);
    return before;
}

} // namespace kar
