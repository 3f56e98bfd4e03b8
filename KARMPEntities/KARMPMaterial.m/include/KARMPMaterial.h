#pragma once

#include "KARMPEntity.h"

/// Base of materials, which applications derive from it.
class KARMP_API KARMPMaterial : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPMaterial, KARMPEntity)

protected:
    KARMPMaterial();
    KARMPMaterial(const KARMPMaterial& source, CopyMode mode);
    ~KARMPMaterial() override;
};
