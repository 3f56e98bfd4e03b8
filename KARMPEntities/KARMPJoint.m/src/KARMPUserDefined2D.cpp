#include "KARMPUserDefined2D.h"

#include "KARMPKindDefinition.h"

KARMP_DEFINE_KIND(KARMPUserDefined2D, "614C1B95-A867-4171-ADDB-7083AD981714", L"UserDefined2D",
                  PassingFrame,
                  "A planar joint that leaves whatever motion its constraints leave.");
