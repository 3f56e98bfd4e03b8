// What a solver attaches to an expression.
#pragma once

#include "KARIMPValueLoader.h"

/// The expression tells it nothing: the solver reads the equation, its variables and their mapping.
class KAR_API KARIMPExpressionLoader : public KARIMPValueLoader
{};
