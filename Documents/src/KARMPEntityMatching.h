#pragma once

#include "KARMPWorldDifference.h"
#include "KARMPWorldGraph.h"

#include <vector>

namespace karmp::documents {

/// Which entities of two worlds correspond.
struct EntityMatching
{
    /// For each entity of a world the one of the other world, NoEntity for one that has none.
    std::vector<EntityNumber> ofBefore;
    std::vector<EntityNumber> ofAfter;
};

/// Finds what corresponds, as FindDifferences tells it.
EntityMatching MatchEntities(const WorldGraph& before, const WorldGraph& after,
                             const DifferenceOptions& options);

} // namespace karmp::documents
