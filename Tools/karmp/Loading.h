// Loading of documents for the commands, with messages on standard error.
#pragma once

#include "KARMPDocuments.h"

#include <optional>
#include <string>

namespace karmp::tool {

/// Prints messages on standard error, errors only unless `all`.
void PrintMessages(const documents::Diagnostics& messages, bool all);

/// Loads a world; empty, with the reason on standard error, when the file holds none. The number of
/// problems of a partial world is printed on standard error.
std::optional<documents::LoadResult> LoadWorld(const std::string& file);

/// True when both paths refer to one file, also through links and other spellings.
bool IsSameFile(const std::string& first, const std::string& second);

/// Whether what was read of `input` may be written to `output` in spite of errors in it. The
/// content that they are about would be lost, and with the input itself as output it could not be
/// recovered; so it takes `force` and another file. Where it may not, the errors and the reason are
/// on standard error.
bool MayWrite(const std::string& input, const std::string& output, bool force,
              const documents::Diagnostics& messages);

/// Parses a document without making a world of it; empty, with the reason on standard error, when
/// the file holds none.
std::optional<documents::Document> ReadTree(const std::string& file);

} // namespace karmp::tool
