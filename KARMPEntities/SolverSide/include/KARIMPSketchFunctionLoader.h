// What a solver attaches to a sketch function.
#pragma once

#include "KARIMPValueLoader.h"

/// The function tells it nothing: the solver reads the curves and the reference axis.
class KAR_API KARIMPSketchFunctionLoader : public KARIMPValueLoader
{};
