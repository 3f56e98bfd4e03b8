// Files that are written whole or not at all.
#pragma once

#include "KARMPDocumentDiagnostics.h"
#include "KARMPDocumentsExport.h"

#include <filesystem>
#include <string_view>

namespace karmp::documents {

/// Writes a file so that at any time its name refers to either the old or the new content: by a
/// temporary file in the same folder, which is synchronised and renamed. What is no regular file (a
/// device, a pipe) is written directly. Permissions of a replaced file are kept; a symbolic link
/// stays one, and the file it leads to is replaced. After an error, reported in the diagnostics,
/// the existing file is as it was and the temporary one is removed. Does not throw.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics WriteWholeFile(const std::filesystem::path& path,
                                                             std::string_view bytes);
/// Copies a file in the same way. The copy gets the permissions of the file before it gets the
/// content, whatever those of a file that it replaces were.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics CopyWholeFile(const std::filesystem::path& from,
                                                            const std::filesystem::path& to);

} // namespace karmp::documents
