// Versions of the element tree: the tags that gate its items, in ascending order.
#pragma once

#include "KARPlatformExport.h"

#include <cstddef>
#include <string_view>

namespace karmp {

/// The earliest version; nothing is gated by it.
inline constexpr std::wstring_view R2015x_0 = L"R2015x.0";
/// Adds the "Type" of a variable.
inline constexpr std::wstring_view R2016_0 = L"R2016.0";
/// Adds the "OutOfWorld" of a body.
inline constexpr std::wstring_view R2016_1 = L"R2016.1";
/// A variable's "Value" is a child element, its "Type" and quantity are words.
inline constexpr std::wstring_view R2017_0 = L"R2017.0";
/// Adds "isActive" of every entity and "bodyOrientation" of a joint's bodies.
inline constexpr std::wstring_view R2017_1 = L"R2017.1";
/// The "PhysicalQuantity" of a value is a word.
inline constexpr std::wstring_view R2018_0 = L"R2018.0";
/// The current version; nothing is gated by it.
inline constexpr std::wstring_view R2018_1 = L"R2018.1";

/// The version of a tree for which nobody sets another.
inline constexpr std::wstring_view CurrentVersion = R2018_1;

/// True when `version` is `tag` or a later one: compared character by character, a prefix before
/// the longer text, so that an empty version is below every tag.
constexpr bool AtLeast(std::wstring_view version, std::wstring_view tag)
{
    // The tags differ within their first characters, so that a call costs more than the loop.
    const std::size_t size = version.size() < tag.size() ? version.size() : tag.size();
    for (std::size_t i = 0; i < size; ++i)
        if (version[i] != tag[i])
            return version[i] > tag[i];
    return version.size() >= tag.size();
}

} // namespace karmp
