#pragma once

#include "KARIMPConnectorLoader.h"

/// What a solver attaches to an axial spring. The library only returns it.
class KAR_API KARIMPAxialSpringLoader : public KARIMPConnectorLoader
{};
