#pragma once

#include "KARMPEntity.h"

/// Entity that carries what a developer wants to look at.
class KARMP_API KARMPDebugEntity : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPDebugEntity, KARMPEntity)

protected:
    KARMPDebugEntity();
    KARMPDebugEntity(const KARMPDebugEntity& source, CopyMode mode);
    ~KARMPDebugEntity() override;
};
