// How the findings of a check are printed.
#pragma once

#include "KARMPDocumentDiagnostics.h"

#include <cstddef>
#include <string>
#include <vector>

namespace karmp::tool {

/// A document and what was found in it.
struct CheckedFile
{
    std::string name;
    documents::Diagnostics findings;
    /// False when there is no world in it.
    bool isRead;
};

/// Prints the findings of all files, `most` at most, and, unless `quiet`, what was counted: of each
/// file and, of several, of all.
void PrintFindings(const std::vector<CheckedFile>& files, std::size_t most, bool quiet);
/// The same as one JSON value: that of the only file, or of several one with a list of them.
void PrintJson(const std::vector<CheckedFile>& files, std::size_t most);
/// The same as a log in SARIF 2.1.0.
void PrintSarif(const std::vector<CheckedFile>& files, std::size_t most);

} // namespace karmp::tool
