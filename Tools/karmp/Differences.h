// What two worlds differ in, as text and as JSON.
#pragma once

#include "KARMPWorldDifference.h"

#include <cstddef>
#include <iosfwd>
#include <vector>

namespace karmp::tool {

/// Prints the first differences, at most `limit`, grouped by entity.
void PrintText(std::ostream& out, const std::vector<documents::Difference>& differences,
               bool showsIdentifiers, std::size_t limit);
/// Prints how many there are of each kind.
void PrintSummary(std::ostream& out, const std::vector<documents::Difference>& differences);
/// Prints them as an array, whose first line is not indented.
void PrintJson(std::ostream& out, const std::vector<documents::Difference>& differences);

} // namespace karmp::tool
