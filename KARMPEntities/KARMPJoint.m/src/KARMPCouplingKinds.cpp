#include "KARMPCouplingKinds.h"

#include "KARMPKindDefinition.h"

KARMP_DEFINE_KIND(KARMPGear, "9B315683-BFDF-42d1-8D90-0DE1E00427C6", L"Gear", PassingFrame,
                  "A coupling of two rotations.");
KARMP_DEFINE_KIND(KARMPRack, "BC733B73-C8F8-4f6d-B455-8565A190E6AC", L"Rack", PassingFrame,
                  "A coupling of a rotation and a translation.");
KARMP_DEFINE_KIND(KARMPCable, "DA99EAA0-CF90-449b-A685-622FC6997E8D", L"Cable", PassingFrame,
                  "A coupling of two translations.");
