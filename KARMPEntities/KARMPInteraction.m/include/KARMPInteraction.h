#pragma once

#include "KARMPEntity.h"

/// Base of the rules by which bodies collide.
class KARMP_API KARMPInteraction : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPInteraction, KARMPEntity)

protected:
    KARMPInteraction();
    KARMPInteraction(const KARMPInteraction& source, CopyMode mode);
    ~KARMPInteraction() override;
};
