// How a geometry is drawn, and the frame that it gives a joint.
#pragma once

#include "ViewScene.h"

#include <optional>

class KARMPGeometry;

namespace karmp::tool {

/// True when a number can be drawn: it is finite, and so are the squares of single precision.
bool IsDrawable(double number);
bool IsDrawable(const KARMathPoint& point);
bool IsDrawable(const KARMathTransformation& position);

/// The drawing of a geometry in the axes of its body; none for a geometry that is degenerate, of an
/// unknown class, or has a number that cannot be drawn.
std::optional<ViewDrawing> DrawGeometry(const KARMPGeometry& geometry);

/// A frame in a drawing: an axis system itself; otherwise a point, with the drawing's direction as
/// third one. A drawing without a direction gives the axes of its body.
KARMathAxis FrameOf(const ViewDrawing& drawing);
/// True when the drawing has a direction of its own.
bool HasDirection(const ViewDrawing& drawing);

} // namespace karmp::tool
