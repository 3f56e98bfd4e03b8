#pragma once

#include "KARMPAttribute.h"

/// A named result of an entity, which a solver writes. Documents hold it only when the environment
/// variable "MOT_DUMP_OUTPUTS" is set.
class KARMP_API KARMPOutput : public KARMPAttribute
{
    KARMP_ENTITY(KARMPOutput, KARMPAttribute)

public:
    /// Writes "Output" with its children and supports. A null serializer, an element that cannot
    /// be added and a failing base are a failed check and a failure. Does nothing, with 0, unless
    /// "MOT_DUMP_OUTPUTS" is set.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPOutput();
    KARMPOutput(const KARMPOutput& source, CopyMode mode);
    ~KARMPOutput() override;
};
