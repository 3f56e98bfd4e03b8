// The paths by which messages name the elements of a document.
#pragma once

#include "KARMPDocumentReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// A path: the nodes from a root down to one of its descendants, both included.
using Way = std::vector<const KARMPDeserializer*>;

/// "/Root/Child[2]/@attribute": a number where siblings share a name. A long path is cut.
std::string PathText(const Way& way, std::wstring_view attribute = {});

/// The path to an entity's element or a registry; empty when the node is neither.
Way FindWay(const KARMPDocumentReader& root, const KARMPDeserializer* node);

} // namespace karmp::documents
