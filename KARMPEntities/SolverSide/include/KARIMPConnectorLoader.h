// What a solver attaches to a connector. The library only hands it out.
#pragma once

#include "KARIMPEntityLoader.h"

class KAR_API KARIMPConnectorLoader : public KARIMPEntityLoader
{};
