// What a solver attaches to a shape. The library only hands it out.
#pragma once

#include "KARIMPEntityLoader.h"

class KAR_API KARIMPShapeLoader : public KARIMPEntityLoader
{};
