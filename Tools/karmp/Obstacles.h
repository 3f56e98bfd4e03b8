// What keeps a file or folder from being made, as far as can be said without doing it: of a dry
// run.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace karmp::tool {

/// Whether documents::WriteWholeFile would write each of the files; why not the first one that it
/// would not is on standard error.
bool CanWriteFiles(const std::vector<std::string>& files);
/// Why a folder could not be made with those above it, or no file in it; empty when it could.
std::string ObstacleToFolder(const std::filesystem::path& folder);

} // namespace karmp::tool
