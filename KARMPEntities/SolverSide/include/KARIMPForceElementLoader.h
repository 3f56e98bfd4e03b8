#pragma once

#include "KARIMPConnectorLoader.h"

/// What a solver attaches to a force element. The library only returns it.
class KAR_API KARIMPForceElementLoader : public KARIMPConnectorLoader
{};
