// The depth of entities in documents, and the records of elements.
#pragma once

#include "KARMPElementRecords.h"

namespace karmp::documents {

/// The number of elements above an entity's: the root, the world and a family's list.
constexpr unsigned EntityDepth = 3;

} // namespace karmp::documents
