#pragma once

#include "KARTextConversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::model {

/// True when all characters are ASCII.
inline bool IsAscii(std::string_view text)
{
    // Eight characters at once.
    std::uint64_t all = 0;
    std::size_t done = 0;
    for (; done + sizeof all <= text.size(); done += sizeof all) {
        std::uint64_t characters = 0;
        std::memcpy(&characters, text.data() + done, sizeof characters);
        all |= characters;
    }
    for (; done < text.size(); ++done)
        all |= static_cast<unsigned char>(text[done]);
    return (all & 0x8080808080808080U) == 0;
}

/// The name that differs least from a text, the text itself where it is among them; empty when none
/// is near.
std::string NearestName(std::string_view text, const std::vector<std::string>& names);

/// What is told of a base class behind its name.
constexpr const char* BaseClassText = " is a base class, of which no entity is made";

/// "two" to "nine", other numbers in digits.
std::string NumberWord(std::size_t number);

} // namespace karmp::model
