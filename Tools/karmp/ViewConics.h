// Drawings of circles, ellipses and other conics.
#pragma once

#include "ViewScene.h"

class KARMPCircle;
class KARMPCircle2D;
class KARMPCirline;
class KARMPEllipse;
class KARMPHyperbola;
class KARMPParabola;

namespace karmp::tool {

/// Adds the numbers of a conic. One that is degenerate gets a number that is none.
void Draw(const KARMPCircle& geometry, ViewDrawing& drawing);
void Draw(const KARMPCircle2D& geometry, ViewDrawing& drawing);
void Draw(const KARMPEllipse& geometry, ViewDrawing& drawing);
/// A circle, or a line when its curvature is 0.
void Draw(const KARMPCirline& geometry, ViewDrawing& drawing);
/// One branch, that on the side of the major direction.
void Draw(const KARMPHyperbola& geometry, ViewDrawing& drawing);
/// Around the vertex, as far as the sides have turned by some 60 degrees.
void Draw(const KARMPParabola& geometry, ViewDrawing& drawing);

} // namespace karmp::tool
