#pragma once

#include "KARMPSensor.h"
#include "KARMathTransformation.h"

class KARMPBody;

/// Measures how far a body was moved, in the axes of the world.
class KARMP_API KARMPDisplacementSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPDisplacementSensor, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the displacement the identity; always 0.
    KARStatus Reset() override;
    /// Has the loader update; 0 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;

    /// Stores the body that is measured; KARMPBody::SetDisplacementSensor makes the other side of
    /// the link. A null handle is a failed check and a failure, and the former body stays.
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) { return m_body.Set(body); }
    /// Gives the body; without one a null handle, a failed check and a failure.
    KARStatus GetBody(QOBSharedHandle<KARMPBody>& body) const { return m_body.Require(body); }
    /// Lets the body go. A null handle is a failed check and a failure; another body gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body) { return m_body.Remove(body); }
    /// The transformation of the world by which the body was moved.
    void SetDisplacement(const KARMathTransformation& displacement)
    {
        m_displacement = displacement;
    }
    void GetDisplacement(KARMathTransformation& displacement) const
    {
        displacement = m_displacement;
    }

protected:
    KARStatus RemoveParent() override;

    KARMPDisplacementSensor();
    /// A copy has the displacement and no body.
    KARMPDisplacementSensor(const KARMPDisplacementSensor& source, CopyMode mode);
    ~KARMPDisplacementSensor() override;

private:
    KARMPLink<KARMPBody> m_body;
    KARMathTransformation m_displacement;
};
