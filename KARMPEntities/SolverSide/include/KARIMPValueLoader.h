#pragma once

#include "KARIMPEntityLoader.h"

/// Base of the loaders of values: what a solver attaches to a value that it reads. A value tells
/// its loader nothing.
class KAR_API KARIMPValueLoader : public KARIMPEntityLoader
{};
