// What a solver attaches to a constant.
#pragma once

#include "KARIMPValueLoader.h"

/// The constant tells it nothing: the solver reads the number.
class KAR_API KARIMPConstantLoader : public KARIMPValueLoader
{};
