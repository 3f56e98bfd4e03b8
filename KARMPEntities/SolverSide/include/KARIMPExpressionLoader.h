#pragma once

#include "KARIMPValueLoader.h"

/// What a solver attaches to an expression. The expression tells it nothing: the solver reads the
/// equation, its variables and their mapping.
class KAR_API KARIMPExpressionLoader : public KARIMPValueLoader
{};
