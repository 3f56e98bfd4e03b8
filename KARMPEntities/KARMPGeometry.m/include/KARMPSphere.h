// A sphere, given by its centre and radius.
#pragma once

#include "KARMPGeometry.h"
#include "KARMathPoint.h"

class KARMP_API KARMPSphere : public KARMPGeometry
{
    KARMP_ENTITY(KARMPSphere, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the centre, as given; always 0.
    virtual KARStatus SetCenter(const KARMathPoint& center) { return Copy(center, m_center); }
    /// Hands out the centre; always 0.
    virtual KARStatus GetCenter(KARMathPoint& center) const { return Copy(m_center, center); }
    /// Stores the radius, as given; always 0.
    virtual KARStatus SetRadius(double radius) { return Copy(radius, m_radius); }
    /// Hands out the radius; always 0.
    virtual KARStatus GetRadius(double& radius) const { return Copy(m_radius, radius); }

protected:
    KARMPSphere();
    /// A copy has the radius of its source and is otherwise as new.
    KARMPSphere(const KARMPSphere& source, CopyMode mode);
    ~KARMPSphere() override;

private:
    KARMathPoint m_center;
    double m_radius = 0.0;
};
