// What of one document's tree another one does not hold.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

class KARMPDeserializer;

namespace karmp::tool {

/// One difference: where it stands, and what is there.
struct Difference
{
    std::string path;
    std::string text;
};

/// Compares two trees, whose entities may stand in any order: an item with an "id" is compared with
/// the one of the same name and id, any other with the one of the same name and number. Finds what
/// `after` lacks and what reads differently in it, at most `limit` differences.
std::vector<Difference> FindDifferences(const KARMPDeserializer& before,
                                        const KARMPDeserializer& after, std::size_t limit);

} // namespace karmp::tool
