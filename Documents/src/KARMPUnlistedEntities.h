#pragma once

#include "KARMPDocuments.h"

namespace karmp::documents {

/// The entities of a tree that a world which reads it makes and lists in no registry, in the order
/// of the registries' elements.
std::vector<UnlistedEntity> FindUnlisted(const Document& document);

} // namespace karmp::documents
