#include "KARMPTextCapacity.h"

#include <cstdint>
#include <new>
#include <stdexcept>

#if defined(__linux__)
#    include <sys/mman.h>
#endif

namespace karmp::documents {

namespace {

// Large pages need a few hundredths of the page faults. Without them nothing changes.
void AskForLargePages([[maybe_unused]] const std::string& bytes)
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t page = 1U << 21U;
    const auto begin = reinterpret_cast<std::uintptr_t>(bytes.data());
    const std::uintptr_t first = (begin + bytes.size() + page - 1) / page * page;
    const std::uintptr_t last = (begin + bytes.capacity()) / page * page;
    if (first < last)
        ::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}

} // namespace

void ReserveMore(std::string& bytes, std::size_t more)
{
    try {
        bytes.reserve(bytes.size() + more);
    } catch (const std::bad_alloc&) {
        return;
    } catch (const std::length_error&) {
        return;
    }
    AskForLargePages(bytes);
}

} // namespace karmp::documents
