#pragma once

#include "KARMPAttribute.h"

/// Named result of an entity.
class KARMP_API KARMPOutput : public KARMPAttribute
{
    KARMP_ABSTRACT_ENTITY(KARMPOutput, KARMPAttribute)

protected:
    KARMPOutput();
    KARMPOutput(const KARMPOutput& source, CopyMode mode);
    ~KARMPOutput() override;
};
