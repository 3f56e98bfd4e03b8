// What a solver attaches to a constraint that stands for a joint. The library only hands it out.
#pragma once

#include "KARIMPConstraintLoader.h"

class KAR_API KARIMPKinematicConstraintLoader : public KARIMPConstraintLoader
{};
