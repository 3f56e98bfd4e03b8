#pragma once

#include "KARIMPConnectorLoader.h"

/// What a solver attaches to a bushing. The library only returns it.
class KAR_API KARIMPBushingLoader : public KARIMPConnectorLoader
{};
