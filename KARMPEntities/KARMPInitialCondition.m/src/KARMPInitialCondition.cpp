#include "KARMPInitialCondition.h"

#include "KARMPKindDefinition.h"

KARMP_DEFINE_KIND(KARMPInitialCondition, "F2D98B10-249A-4DF1-AB2B-E46AAE3B895C",
                  L"InitialCondition", LenientFrame, "The state in which an analysis begins.");
