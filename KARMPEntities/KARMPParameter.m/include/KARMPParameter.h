#pragma once

#include "KARMPAttribute.h"

/// A named input of an entity: a number, a flag or a text that a solver reads.
class KARMP_API KARMPParameter : public KARMPAttribute
{
    KARMP_ENTITY(KARMPParameter, KARMPAttribute)

public:
    /// Writes "Parameter" with its children and supports. A null serializer, an element that cannot
    /// be added and a failing base are a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPParameter();
    KARMPParameter(const KARMPParameter& source, CopyMode mode);
    ~KARMPParameter() override;
};
