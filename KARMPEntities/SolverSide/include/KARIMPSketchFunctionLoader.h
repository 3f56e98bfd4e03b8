#pragma once

#include "KARIMPValueLoader.h"

/// What a solver attaches to a sketch function. The function tells it nothing: the solver reads the
/// curves and the reference axis.
class KAR_API KARIMPSketchFunctionLoader : public KARIMPValueLoader
{};
