#pragma once

#include "KARMPWorldDifference.h"
#include "KARMPWorldGraph.h"

#include <cstdint>
#include <span>
#include <vector>

namespace karmp::documents {

/// Whether two numbers are equal by the options. `scale` is the greatest magnitude of the numbers
/// that belong together.
bool AreEqual(double before, double after, double scale, const DifferenceOptions& options);
/// The same of the values of an item, entities by their handles.
bool AreEqual(const Value& before, const Value& after, ItemKind kind,
              const DifferenceOptions& options);

/// A number that belongs to the values of an entity's items, names and links apart. Doubles that
/// the options call equal have, but for those next to a limit of rounding, one number.
std::uint64_t HashOfContent(const WorldGraph::Entity& entity, const DifferenceOptions& options);

/// All numbers among the values of an entity's items, in the order of the items.
std::vector<double> NumbersOf(const WorldGraph::Entity& entity);

} // namespace karmp::documents
