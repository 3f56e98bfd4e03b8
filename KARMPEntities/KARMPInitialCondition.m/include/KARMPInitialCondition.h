#pragma once

#include "KARMPEntity.h"

/// State in which an analysis begins.
class KARMP_API KARMPInitialCondition : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPInitialCondition, KARMPEntity)

protected:
    KARMPInitialCondition();
    KARMPInitialCondition(const KARMPInitialCondition& source, CopyMode mode);
    ~KARMPInitialCondition() override;
};
