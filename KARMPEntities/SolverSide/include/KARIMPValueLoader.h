// What a solver attaches to a value that it reads.
#pragma once

#include "KARIMPEntityLoader.h"

/// Base of the loaders of values. A value tells its loader nothing: the solver reads it.
class KAR_API KARIMPValueLoader : public KARIMPEntityLoader
{};
