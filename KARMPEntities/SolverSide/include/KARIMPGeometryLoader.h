#pragma once

#include "KARIMPEntityLoader.h"

/// What a solver attaches to a geometry. The library only returns it.
class KAR_API KARIMPGeometryLoader : public KARIMPEntityLoader
{};
