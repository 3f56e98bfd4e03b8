// Drawings of free curves and surfaces from the stored geometry.
#pragma once

#include "ViewScene.h"

class KARBaseUnknown;
class KARMPCurve;
class KARMPCurve2D;

namespace karmp::tool {

/// Adds the points of a curve, segment by segment; nothing when it has none.
void DrawStoredCurve(const KARMPCurve& curve, ViewDrawing& drawing);
void DrawStoredCurve(const KARMPCurve2D& curve, ViewDrawing& drawing);
/// Adds a mesh of a surface, or of the faces of a topological body; nothing of any other object.
/// Faces within loops are drawn whole, as far as their surfaces go.
void DrawStoredSurface(const KARBaseUnknown* stored, ViewDrawing& drawing);

} // namespace karmp::tool
