// Wide text as narrow text of the C library's current locale.
#pragma once

#include <string>
#include <string_view>

namespace karmp {

/// Gives the narrow form of a text, as wcstombs does but of any length and with null characters
/// inside. False, with `narrow` empty, when the locale lacks one of the characters.
bool NarrowText(std::wstring_view text, std::string& narrow);

} // namespace karmp
