#pragma once

#include "KARIMPEntityLoader.h"

/// What a solver attaches to a shape. The library only returns it.
class KAR_API KARIMPShapeLoader : public KARIMPEntityLoader
{};
