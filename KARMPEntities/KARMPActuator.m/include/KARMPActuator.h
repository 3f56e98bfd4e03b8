#pragma once

#include "KARMPEntity.h"

/// Base of what imposes a motion or a force on a mechanism: actuators, motors and drivers.
class KARMP_API KARMPActuator : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPActuator, KARMPEntity)

public:
    /// Writes the entity's content into the concrete actuator's element. A null serializer is a
    /// failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the entity's content from the concrete actuator's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPActuator();
    KARMPActuator(const KARMPActuator& source, CopyMode mode);
    ~KARMPActuator() override;
};
