#include "KARLargePages.h"

#include <cstdint>
#include <new>

#if defined(__linux__)
#    include <sys/mman.h>
#endif

namespace kar {

void AskForLargePages([[maybe_unused]] const void* memory,
                      [[maybe_unused]] std::size_t bytes) noexcept
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + LargePage - 1) / LargePage * LargePage;
    const std::uintptr_t last = (begin + bytes) / LargePage * LargePage;
    if (first < last)
        ::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}

void* AllocateLargePages(std::size_t bytes)
{
    if (bytes < LargePage)
        return ::operator new(bytes);
    void* const memory = ::operator new(bytes, std::align_val_t(LargePage));
    AskForLargePages(memory, bytes);
    return memory;
}

void FreeLargePages(void* memory, std::size_t bytes) noexcept
{
    if (bytes < LargePage)
        ::operator delete(memory);
    else
        ::operator delete(memory, std::align_val_t(LargePage));
}

} // namespace kar
