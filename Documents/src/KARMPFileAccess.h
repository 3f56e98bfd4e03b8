// Reads whole files.
#pragma once

#include "KARMPMessages.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace karmp::documents {

/// Reads a file of up to `limit` bytes. False after an error, which is reported.
bool ReadWholeFile(const std::filesystem::path& path, std::size_t limit, std::string& bytes,
                   Messages& messages);

} // namespace karmp::documents
