#pragma once

#include "KARMPEntity.h"

/// State in which an analysis begins. The application tells it by the condition's attributes.
class KARMP_API KARMPInitialCondition : public KARMPEntity
{
    KARMP_KIND(KARMPInitialCondition, KARMPEntity)
};
