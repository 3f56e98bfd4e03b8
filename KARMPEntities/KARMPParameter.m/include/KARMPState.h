#pragma once

#include "KARMPAttribute.h"

/// Named state of an entity.
class KARMP_API KARMPState : public KARMPAttribute
{
    KARMP_ABSTRACT_ENTITY(KARMPState, KARMPAttribute)

protected:
    KARMPState();
    KARMPState(const KARMPState& source, CopyMode mode);
    ~KARMPState() override;
};
