#pragma once

#include "KARTextConversion.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::model {

/// True when all characters are ASCII.
inline bool IsAscii(std::string_view text)
{
    unsigned char all = 0;
    for (const char c : text)
        all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

/// The wide text of UTF-8, fast where all characters are ASCII.
inline std::wstring Wide(std::string_view text)
{
    return IsAscii(text) ? std::wstring(text.begin(), text.end()) : kar::ToWide(text);
}

/// The name that differs least from a text, the text itself where it is among them; empty when none
/// is near.
std::string NearestName(std::string_view text, const std::vector<std::string>& names);

/// "two" to "nine", other numbers in digits.
std::string NumberWord(std::size_t number);

} // namespace karmp::model
