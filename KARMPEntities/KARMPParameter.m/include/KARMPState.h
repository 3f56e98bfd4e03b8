#pragma once

#include "KARMPAttribute.h"

/// A named state of an entity, which a solver reads and writes. Documents do not hold its supports.
class KARMP_API KARMPState : public KARMPAttribute
{
    KARMP_ENTITY(KARMPState, KARMPAttribute)

public:
    /// Writes "State" with its children. A null serializer, an element that cannot be added and a
    /// failing base are a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPState();
    KARMPState(const KARMPState& source, CopyMode mode);
    ~KARMPState() override;
};
