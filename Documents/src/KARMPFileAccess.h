// Reads and writes whole files.
#pragma once

#include "KARMPMessages.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace karmp::documents {

/// Reads a file of up to `limit` bytes. False after an error, which is told.
bool ReadWholeFile(const std::filesystem::path& path, std::size_t limit, std::string& bytes,
                   Messages& messages);

/// Writes a file so that at any time either the old or the new content stands under its name. What
/// is no regular file (a device, a pipe) is written in place. False after an error, which is told.
bool WriteWholeFile(const std::filesystem::path& path, std::string_view bytes, Messages& messages);

} // namespace karmp::documents
