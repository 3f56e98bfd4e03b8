#pragma once

#include "KARMPEntity.h"

/// Named data of an entity that a solver reads or writes.
class KARMP_API KARMPAttribute : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPAttribute, KARMPEntity)

protected:
    KARMPAttribute();
    KARMPAttribute(const KARMPAttribute& source, CopyMode mode);
    ~KARMPAttribute() override;
};
