// What the commands limit; docs/documents.md has the values.
#pragma once

#include <cstddef>
#include <string_view>

namespace karmp::tool {

/// Messages about one document. High enough that warnings do not crowd out an error.
inline constexpr std::size_t MostProblems = 1'000'000;

/// Differences that convert, extract and shape list.
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

/// Bytes of a part: of its file and of all files that this one names.
inline constexpr std::size_t LargestPart = std::size_t{256} << 20U;
/// Triangles of a part.
inline constexpr std::size_t MostTriangles = 1'000'000;
/// Bytes of the scene graph that is made of a part.
inline constexpr std::size_t LargestSceneGraph = 1U << 30U;
/// Bytes of memory of the process that reads a part.
inline constexpr std::size_t MemoryForParts = std::size_t{4} << 30U;
/// Seconds that this process may take.
inline constexpr int SecondsForParts = 60;

} // namespace karmp::tool
