// What a solver attaches to a geometry. The library only hands it out.
#pragma once

#include "KARIMPEntityLoader.h"

class KAR_API KARIMPGeometryLoader : public KARIMPEntityLoader
{};
