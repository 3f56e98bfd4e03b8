#pragma once

#include "KARMPSensor.h"
#include "KARMathTransformation2D.h"

/// Measures how far a planar body was moved, in the axes of the plane.
class KARMP_API KARMPDisplacementSensor2D : public KARMPSensor
{
    KARMP_ENTITY(KARMPDisplacementSensor2D, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the displacement the identity; always 0.
    KARStatus Reset() override;
    /// Has the loader update; 0 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;

    /// The transformation of the plane by which the body was moved.
    void SetDisplacement(const KARMathTransformation2D& displacement)
    {
        m_displacement = displacement;
    }
    void GetDisplacement(KARMathTransformation2D& displacement) const
    {
        displacement = m_displacement;
    }

protected:
    KARMPDisplacementSensor2D();
    KARMPDisplacementSensor2D(const KARMPDisplacementSensor2D& source, CopyMode mode);
    ~KARMPDisplacementSensor2D() override;

private:
    KARMathTransformation2D m_displacement;
};
