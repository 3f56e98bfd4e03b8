// Whether text files of parts were cut: the readers take what there is of them.
#pragma once

#include <filesystem>

namespace karmp::tool {

/// False for an STL file that is neither as long as its number of triangles asks for nor a text
/// with an end.
bool IsWholeStl(const std::filesystem::path& file);

/// False for a PLY file in text form with fewer numbers than its header announces.
bool IsWholePly(const std::filesystem::path& file);

} // namespace karmp::tool
