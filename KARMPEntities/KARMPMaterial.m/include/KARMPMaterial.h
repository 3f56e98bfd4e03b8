#pragma once

#include "KARMPEntity.h"

/// Base of materials, which applications derive from it; the factory has none.
///
/// A document keeps no material: the element of the materials of a world stays empty, and reading
/// it brings none back.
class KARMP_API KARMPMaterial : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPMaterial, KARMPEntity)

public:
    /// Writes nothing, not even what every entity writes. A null serializer is a failed check and a
    /// failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads nothing. A null deserializer is a failed check and a failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPMaterial();
    KARMPMaterial(const KARMPMaterial& source, CopyMode mode);
    ~KARMPMaterial() override;
};
