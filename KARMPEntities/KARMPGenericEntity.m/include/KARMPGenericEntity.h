#pragma once

#include "KARMPEntity.h"

/// Entity of a category that the application names.
class KARMP_API KARMPGenericEntity : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPGenericEntity, KARMPEntity)

protected:
    KARMPGenericEntity();
    KARMPGenericEntity(const KARMPGenericEntity& source, CopyMode mode);
    ~KARMPGenericEntity() override;
};
