#pragma once

#include "KARMPEntity.h"

/// Base of what drives a mechanism: actuators, motors and drivers.
class KARMP_API KARMPActuator : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPActuator, KARMPEntity)

protected:
    KARMPActuator();
    KARMPActuator(const KARMPActuator& source, CopyMode mode);
    ~KARMPActuator() override;
};
