// Memory that the system may map by large pages, for what a large model fills at once.
#pragma once

#include "KARPlatformExport.h"

#include <cstddef>

namespace kar {

/// The bytes of a large page of most processors.
inline constexpr std::size_t LargePage = std::size_t{1} << 21U;

/// Asks for large pages for those that lie within some memory: they need a few hundredths of the
/// page faults. Without them nothing changes but the time.
KAR_API void AskForLargePages(const void* memory, std::size_t bytes) noexcept;

/// Memory that begins with a large page when it has as many bytes as one, freed by
/// FreeLargePages with the same number of bytes; throws std::bad_alloc.
KAR_API void* AllocateLargePages(std::size_t bytes);
KAR_API void FreeLargePages(void* memory, std::size_t bytes) noexcept;

} // namespace kar
