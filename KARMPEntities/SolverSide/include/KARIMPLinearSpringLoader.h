#pragma once

#include "KARIMPConnectorLoader.h"

/// What a solver attaches to a linear spring. The library only returns it.
class KAR_API KARIMPLinearSpringLoader : public KARIMPConnectorLoader
{};
