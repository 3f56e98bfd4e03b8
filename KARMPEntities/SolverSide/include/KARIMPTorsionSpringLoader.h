#pragma once

#include "KARIMPConnectorLoader.h"

/// What a solver attaches to a torsion spring. The library only returns it.
class KAR_API KARIMPTorsionSpringLoader : public KARIMPConnectorLoader
{};
