// The meshes of a part file.
#pragma once

#include "KAR3DRep.h"

#include <string>

namespace karmp::tool {

/// Reads the meshes of a part file with lengths multiplied by `scale`. Throws an exception with the
/// reason when there are none. A damaged file may do worse: for a process of its own.
KAR3DRepOwner<KAR3DRep> ImportPart(const std::string& file, double scale);

} // namespace karmp::tool
