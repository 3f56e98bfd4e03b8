// Memory for the small blocks that a model is made of: entities and their lists of links.
//
// A large model's entities are visited in the order in which they were created. Blocks of one size
// are adjacent in memory here, so that such a visit makes good use of the caches, and freeing one
// costs little, whatever its neighbours. Any thread may free what another allocated.
#pragma once

#include "KARPlatformExport.h"

#include <cstddef>

namespace kar {

/// As the global operator new, which serves what is not small; throws std::bad_alloc.
KAR_API void* AllocateSmall(std::size_t bytes);
/// Frees memory of AllocateSmall, given the size that was asked for; null does nothing.
KAR_API void FreeSmall(void* memory, std::size_t bytes) noexcept;

} // namespace kar
