#pragma once

#include "KARIMPValueLoader.h"

/// What a solver attaches to a constant. The constant tells it nothing: the solver reads the
/// number.
class KAR_API KARIMPConstantLoader : public KARIMPValueLoader
{};
