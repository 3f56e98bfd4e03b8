// Comments of a document, which a document that is written again does not have.
#pragma once

#include "KARMPDocumentDiagnostics.h"

#include <optional>
#include <string>

namespace karmp::tool {

/// A warning with the number of comments and processing instructions of a file and the position of
/// the first one; none without any, and for what is no regular file. The file holds well-formed
/// XML; its declaration does not count.
std::optional<documents::Diagnostic> FindComments(const std::string& file);

} // namespace karmp::tool
