// Prefetch of memory, for walks over many objects.
#pragma once

#include "KARPlatformExport.h"

#include <cstddef>
#include <cstdint>

namespace kar {

/// How many objects ahead a walk prefetches.
inline constexpr std::size_t PrefetchDistance = 6;
/// The same for a walk that does little with most of its objects.
inline constexpr std::size_t FarPrefetchDistance = 4 * PrefetchDistance;
/// The bytes of an object that its links and its destruction touch first.
inline constexpr std::size_t PrefetchedBytes = 256;

/// Prefetches memory that is soon going to be written. Any address is valid, null included. Does
/// nothing where the compiler has no such instruction.
inline void Prefetch([[maybe_unused]] const void* memory,
                     [[maybe_unused]] std::size_t bytes) noexcept
{
#if defined(__GNUC__)
    constexpr std::size_t LineSize = 64;
    // A number, because a pointer must not leave its object, and a null none at all.
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    for (std::size_t offset = 0; offset < bytes; offset += LineSize)
        __builtin_prefetch(reinterpret_cast<const void*>(address + offset), 1);
#endif
}

} // namespace kar
