// What the commands limit; docs/documents.md has the values.
#pragma once

#include <cstddef>
#include <string_view>

namespace karmp::tool {

/// Messages about one document. High enough that warnings do not crowd out an error.
inline constexpr std::size_t MostProblems = 1'000'000;

/// Differences that convert and extract list.
inline constexpr std::size_t MaximumDifferences = 1'000;

/// Bodies of a graph in a format. Graphviz draws this many in five seconds; its time grows faster
/// than their number. Bitmaps are limited to 32,767 pixels a side besides, so that larger graphs
/// would not be readable.
constexpr std::size_t MostBodies(std::string_view format)
{
    return format == "png" ? 1'000 : 3'000;
}

/// Bytes of a picture that Graphviz makes.
inline constexpr std::size_t LargestPicture = 1U << 30U;

} // namespace karmp::tool
