#pragma once

#include "KARMPInteraction.h"

/// A group of entities that collision rules treat alike: its collidables.
class KARMP_API KARMPCollisionLayer : public KARMPInteraction
{
    KARMP_ENTITY(KARMPCollisionLayer, KARMPInteraction)

public:
    /// Writes "CollisionLayer" with the collidables once more as its entities. A null serializer,
    /// an element that cannot be added and a failing base are a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same; an entity that the base brought is not added again.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    /// Always 0.
    KARStatus RemoveParent() override;

    KARMPCollisionLayer();
    KARMPCollisionLayer(const KARMPCollisionLayer& source, CopyMode mode);
    ~KARMPCollisionLayer() override;
};
