#pragma once

#include "KARMPAttribute.h"

/// Named input of an entity.
class KARMP_API KARMPParameter : public KARMPAttribute
{
    KARMP_ABSTRACT_ENTITY(KARMPParameter, KARMPAttribute)

protected:
    KARMPParameter();
    KARMPParameter(const KARMPParameter& source, CopyMode mode);
    ~KARMPParameter() override;
};
