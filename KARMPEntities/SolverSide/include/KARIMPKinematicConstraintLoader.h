#pragma once

#include "KARIMPConstraintLoader.h"

/// What a solver attaches to a constraint that stands for a joint. The library only returns it.
class KAR_API KARIMPKinematicConstraintLoader : public KARIMPConstraintLoader
{};
