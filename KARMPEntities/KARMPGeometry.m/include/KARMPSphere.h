#pragma once

#include "KARMPGeometry.h"
#include "KARMathPoint.h"

/// A sphere, given by its centre and radius.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPSphere : public KARMPGeometry
{
    KARMP_ENTITY(KARMPSphere, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the centre.
    virtual KARStatus SetCenter(const KARMathPoint& center) { return Copy(center, m_center); }
    /// Gives the centre.
    virtual KARStatus GetCenter(KARMathPoint& center) const { return Copy(m_center, center); }
    /// Stores the radius.
    virtual KARStatus SetRadius(double radius) { return Copy(radius, m_radius); }
    /// Gives the radius.
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
