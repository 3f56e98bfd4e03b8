#pragma once

#include "KARIMPShapeLoader.h"

/// What a solver attaches to the shape of a planar body. The library only returns it.
class KAR_API KARIMPShape2DLoader : public KARIMPShapeLoader
{};
