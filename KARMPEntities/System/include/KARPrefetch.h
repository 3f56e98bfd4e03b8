// Asking for memory before it is used, where many objects are met one after the other.
#pragma once

#include <cstddef>

namespace kar {

/// How many objects ahead of its own a walk over objects asks for them.
inline constexpr std::size_t PrefetchDistance = 6;
/// The bytes of an object that its links and its destruction touch first.
inline constexpr std::size_t PrefetchedBytes = 256;

/// Asks for memory that is soon going to be used and changed. Any address will do: this changes
/// nothing but the time that the use takes. Does nothing where the compiler knows no way.
inline void Prefetch([[maybe_unused]] const void* memory,
                     [[maybe_unused]] std::size_t bytes) noexcept
{
#if defined(__GNUC__)
    constexpr std::size_t LineSize = 64;
    for (std::size_t offset = 0; offset < bytes; offset += LineSize)
        __builtin_prefetch(static_cast<const char*>(memory) + offset, 1);
#endif
}

} // namespace kar
