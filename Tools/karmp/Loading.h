// Loads documents for the commands and tells what went wrong.
#pragma once

#include "KARMPDocuments.h"

#include <optional>
#include <string>

namespace karmp::tool {

/// Prints messages on standard error, errors only unless `all`.
void PrintMessages(const documents::Diagnostics& messages, bool all);

/// Loads a world; nothing, with the reason on standard error, when the file holds none. Problems
/// that a partial world has are counted on standard error.
std::optional<documents::LoadResult> LoadWorld(const std::string& file);

/// True when both names lead to one file, through links and other spellings as well.
bool IsSameFile(const std::string& first, const std::string& second);

/// Parses a document without making a world of it; nothing, with the reason on standard error, when
/// the file holds none.
std::optional<documents::Document> ReadTree(const std::string& file);

} // namespace karmp::tool
