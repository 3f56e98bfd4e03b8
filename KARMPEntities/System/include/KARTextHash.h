// Hashes of texts that come from documents.
#pragma once

#include "KARPlatformExport.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kar {

/// A number that each process chooses anew, by which texts are hashed: nobody can write a document
/// whose identifiers all have one hash.
KAR_API extern const std::uint64_t TextHashSeed;

/// The hash of a text, all bits of which are good, and whether its characters are all ASCII.
struct TextHash
{
    std::uint64_t hash = 0;
    bool isAscii = false;
};

namespace detail {

/// Both halves of the product in one, which no bit of the factors passes unchanged.
inline std::uint64_t FoldedProduct(std::uint64_t left, std::uint64_t right) noexcept
{
#if defined(__SIZEOF_INT128__)
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
#else
    constexpr std::uint64_t Low = 0xFFFFFFFFU;
    const std::uint64_t low = (left & Low) * (right & Low);
    const std::uint64_t inner = (left >> 32U) * (right & Low) + (low >> 32U);
    const std::uint64_t outer = (left & Low) * (right >> 32U) + (inner & Low);
    const std::uint64_t high = (left >> 32U) * (right >> 32U) + (inner >> 32U) + (outer >> 32U);
    return (outer << 32U | (low & Low)) ^ high;
#endif
}

/// Some characters, of which the low bytes count, as a number with the first one in its low bits.
template <std::size_t Count, class Character>
std::uint64_t LoadWord(const Character* from) noexcept
{
    std::uint64_t word = 0;
    if constexpr (sizeof(Character) == 1 && std::endian::native == std::endian::little)
        std::memcpy(&word, from, Count);
    else
        for (std::size_t index = 0; index < Count; ++index)
            word |= std::uint64_t{static_cast<unsigned char>(from[index])} << 8U * index;
    return word;
}

/// The hash of a text by eight characters at once, the last ones by loads that overlap.
template <class Character>
TextHash HashCharacters(std::basic_string_view<Character> text, std::uint64_t seed) noexcept
{
    std::uint64_t hash = seed ^ text.size();
    std::uint64_t all = 0;
    const auto take = [&hash, &all](std::uint64_t word) {
        all |= word;
        hash = FoldedProduct(hash ^ word, 0x9E3779B97F4A7C15U);
    };
    const Character* from = text.data();
    const Character* const end = from + text.size();
    for (; end - from > 8; from += 8)
        take(LoadWord<8>(from));
    if (text.size() >= 8)
        take(LoadWord<8>(end - 8));
    else if (text.size() >= 4)
        take(LoadWord<4>(from) | LoadWord<4>(end - 4) << 32U);
    else if (!text.empty())
        take(LoadWord<1>(from) | LoadWord<1>(from + text.size() / 2) << 8U |
             LoadWord<1>(end - 1) << 16U);
    return {hash, (all & 0x8080808080808080U) == 0};
}

} // namespace detail

/// The hash of some bytes.
inline TextHash HashText(std::string_view text, std::uint64_t seed = TextHashSeed) noexcept
{
    return detail::HashCharacters(text, seed);
}

/// The same for wide characters; an ASCII text has the hash of its narrow form.
inline TextHash HashText(std::wstring_view text, std::uint64_t seed = TextHashSeed) noexcept
{
    const bool isAscii = std::all_of(text.begin(), text.end(), [](wchar_t character) {
        return static_cast<std::uint32_t>(character) < 0x80U;
    });
    if (isAscii)
        return detail::HashCharacters(text, seed);
    const std::string_view bytes(reinterpret_cast<const char*>(text.data()),
                                 text.size() * sizeof(wchar_t));
    return {HashText(bytes, seed).hash, false};
}

} // namespace kar
