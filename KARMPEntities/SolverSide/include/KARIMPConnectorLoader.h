#pragma once

#include "KARIMPEntityLoader.h"

/// What a solver attaches to a connector. The library only returns it.
class KAR_API KARIMPConnectorLoader : public KARIMPEntityLoader
{};
