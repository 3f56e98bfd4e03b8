// Pieces of representations as glTF 2.0.
#pragma once

#include "ViewScene.h"

#include <string>
#include <string_view>
#include <vector>

namespace karmp::tool {

/// A text of glTF 2.0 that needs no other file: one node with the pieces in single precision, in
/// the order and the axes that they have, and a material for each colour. Empty without a piece.
std::string GltfOf(const std::vector<ViewPiece>& pieces, std::string_view name);

} // namespace karmp::tool
