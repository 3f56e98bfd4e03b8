// What a document does not give back of a world, told before it is written.
#pragma once

#include "KARMPDocumentsExport.h"
#include "KARMPVersions.h"
#include "KARMPWorldDifference.h"

#include <string_view>
#include <vector>

namespace karmp::documents {

/// What a world loses when it is saved for a version and read again, found without doing either:
/// entities and settings that documents do not hold, items that the version does not hold or that
/// reading does not find, and links to entities that the document lacks.
///
/// A removed entity has no second side; a changed item has the entity on both sides, its value, and
/// that of a new entity, which is what reading leaves it at. Doubles that move to the grid of
/// documents are no losses, nor are directions that reading makes unit vectors. With `isCompleted`
/// the world that reads is completed by CompleteWorld.
KARMP_DOCUMENTS_API std::vector<Difference> FindLosses(const KARMPWorld& world,
                                                       std::wstring_view version = CurrentVersion,
                                                       bool isCompleted = false);

} // namespace karmp::documents
