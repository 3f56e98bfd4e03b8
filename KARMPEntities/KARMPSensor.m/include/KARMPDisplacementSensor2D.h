#pragma once

#include "KARMPSensor.h"
#include "KARMathTransformation2D.h"

class KARMPBody2D;

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

    /// Stores the body that is measured; KARMPBody2D::SetDisplacementSensor makes the other side of
    /// the link. A null handle is a failed check and a failure, and the former body stays.
    KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_body.Set(body); }
    /// Gives the body; without one a null handle, a failed check and a failure.
    KARStatus GetBody(QOBSharedHandle<KARMPBody2D>& body) const { return m_body.Require(body); }
    /// Lets the body go. A null handle is a failed check and a failure; another body gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_body.Remove(body); }
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
    KARStatus RemoveParent() override;

    KARMPDisplacementSensor2D();
    /// A copy has the displacement and no body.
    KARMPDisplacementSensor2D(const KARMPDisplacementSensor2D& source, CopyMode mode);
    ~KARMPDisplacementSensor2D() override;

private:
    KARMPLink<KARMPBody2D> m_body;
    KARMathTransformation2D m_displacement;
};
