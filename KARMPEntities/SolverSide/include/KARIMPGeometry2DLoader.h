#pragma once

#include "KARIMPGeometryLoader.h"

/// What a solver attaches to a planar geometry. The library only returns it.
class KAR_API KARIMPGeometry2DLoader : public KARIMPGeometryLoader
{};
