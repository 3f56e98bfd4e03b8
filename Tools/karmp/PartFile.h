// Files of parts, as programs that draw and print them write them.
#pragma once

#include "KAR3DRep.h"

#include <cstddef>
#include <string>

namespace karmp::tool {

/// What a part file gave.
struct Part
{
    KAR3DRepOwner<KAR3DRep> rep; ///< null when the file holds no part
    std::string error;           ///< why there is none
    std::size_t vertices = 0;
    std::size_t triangles = 0;
};

/// Reads an STL, OBJ, PLY or glTF file, by its ending, with all lengths multiplied by `scale`: a
/// mesh for each material, with its colour and its place in the part. The file is read by a
/// process of its own with bounded memory and time, so that no file can end the tool.
Part ReadPart(const std::string& file, double scale);

} // namespace karmp::tool
