#pragma once

#include "KARMPEntity.h"

/// Tie of an attribute to another entity.
class KARMP_API KARMPSupport : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPSupport, KARMPEntity)

protected:
    KARMPSupport();
    KARMPSupport(const KARMPSupport& source, CopyMode mode);
    ~KARMPSupport() override;
};
