#pragma once

#include "KARMPInteraction.h"

/// Relates layers, its collidables, and gives the coefficients of contacts between them. The
/// numbers are stored as given.
class KARMP_API KARMPCollisionInterLayer : public KARMPInteraction
{
    KARMP_ENTITY(KARMPCollisionInterLayer, KARMPInteraction)

public:
    /// Writes "CollisionInterLayer" with the collidables once more as its layers and with the
    /// coefficients. A null serializer, an element that cannot be added and a failing base are a
    /// failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same; a layer that the base brought is not added again, and a coefficient that is
    /// missing is a failed check and stays.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Appends to the vector the entities of the layer at an index. Outside the list a failure; a
    /// null entry is a failed check and a failure. Throws QOBEInvalidCast for what is no layer.
    KARStatus GetEntities(int index, QOBSharedVector<KARMPEntity>& entities) const override;

    /// The coefficients, of no unit and 0 at first; all of these return 0.
    KARStatus SetRestitutionCoefficient(double coefficient);
    KARStatus GetRestitutionCoefficient(double& coefficient) const;
    KARStatus SetDynamicFrictionCoefficient(double coefficient);
    KARStatus GetDynamicFrictionCoefficient(double& coefficient) const;
    KARStatus SetStaticFrictionCoefficient(double coefficient);
    KARStatus GetStaticFrictionCoefficient(double& coefficient) const;

protected:
    KARMPCollisionInterLayer();
    /// A copy has the coefficients.
    KARMPCollisionInterLayer(const KARMPCollisionInterLayer& source, CopyMode mode);
    ~KARMPCollisionInterLayer() override;

private:
    double m_restitution = 0.0;
    double m_dynamicFriction = 0.0;
    double m_staticFriction = 0.0;
};
