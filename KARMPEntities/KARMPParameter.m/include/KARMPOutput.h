// Named result of an entity.
#pragma once

#include "KARMPAttribute.h"

class KARMP_API KARMPOutput : public KARMPAttribute
{
    KARMP_ABSTRACT_ENTITY(KARMPOutput, KARMPAttribute)

protected:
    KARMPOutput();
    KARMPOutput(const KARMPOutput& source, CopyMode mode);
    ~KARMPOutput() override;
};
