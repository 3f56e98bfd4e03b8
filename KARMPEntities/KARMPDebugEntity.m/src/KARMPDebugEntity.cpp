#include "KARMPDebugEntity.h"

#include "KARMPKindDefinition.h"

KARMP_DEFINE_KIND(KARMPDebugEntity, "E2951591-1871-4B80-85A9-20636423F6B6", L"DebugEntity",
                  LenientFrame, "Something that is kept for inspection only.");
