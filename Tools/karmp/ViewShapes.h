// How a representation is drawn.
#pragma once

#include "ViewBox.h"
#include "ViewScene.h"

class KAR3DRep;
class KARMPShape;

namespace karmp::tool {

/// The pieces of a scene graph, each with the transformations and the colour that it has there.
/// Pieces with a number that cannot be drawn are left out.
std::vector<ViewPiece> DrawRepresentation(const KAR3DRep& rep);

/// The pieces of a shape: those of its representation, or the faces of its body; none otherwise.
std::vector<ViewPiece> DrawShape(const KARMPShape& shape);

/// The box around pieces.
ViewBox BoxAround(const std::vector<ViewPiece>& pieces);

} // namespace karmp::tool
