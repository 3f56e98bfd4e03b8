#pragma once

#include "KARMPEntity.h"

/// Entity that is kept in a world for inspection only.
class KARMP_API KARMPDebugEntity : public KARMPEntity
{
    KARMP_KIND(KARMPDebugEntity, KARMPEntity)
};
