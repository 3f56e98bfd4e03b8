// Memory for the many small things that a model is made of: entities and their lists of links.
//
// A large model's entities are met one after the other, in the order in which they were made. Here
// those of one size stand side by side and so come through the caches fast, and giving one back
// costs little, whatever stands beside it. Any thread may give back what any other got.
#pragma once

#include "KARPlatformExport.h"

#include <cstddef>

namespace kar {

/// As the global operator new, which serves what is not small; throws std::bad_alloc.
KAR_API void* AllocateSmall(std::size_t bytes);
/// Gives back memory of AllocateSmall, with the size that was asked for; null does nothing.
KAR_API void FreeSmall(void* memory, std::size_t bytes) noexcept;

} // namespace kar
