#include "KARTextHash.h"

#include <chrono>

#if defined(__linux__)
#    include <sys/auxv.h>
#endif

namespace {

std::uint64_t ChooseSeed() noexcept
{
#if defined(__linux__)
    // Sixteen bytes that the system draws for each process.
    if (const auto* const drawn = reinterpret_cast<const char*>(::getauxval(AT_RANDOM)))
        return kar::detail::LoadWord<8>(drawn) ^ kar::detail::LoadWord<8>(drawn + 8);
#endif
    static const char anywhere = 0;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return kar::detail::FoldedProduct(reinterpret_cast<std::uintptr_t>(&anywhere) ^
                                          static_cast<std::uint64_t>(now),
                                      0x9E3779B97F4A7C15U);
}

} // namespace

const std::uint64_t kar::TextHashSeed = ChooseSeed();
