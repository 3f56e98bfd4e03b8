#pragma once

#include "KARMPGeometry2D.h"
#include "KARMathPoint2D.h"

/// A circle of a plane, given by its centre and radius.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPCircle2D : public KARMPGeometry2D
{
    KARMP_ENTITY(KARMPCircle2D, KARMPGeometry2D)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the centre.
    virtual KARStatus SetPoint(const KARMathPoint2D& center) { return Copy(center, m_center); }
    /// Gives the centre.
    virtual KARStatus GetPoint(KARMathPoint2D& center) const { return Copy(m_center, center); }
    /// Stores the radius.
    virtual KARStatus SetRadius(double radius) { return Copy(radius, m_radius); }
    /// Gives the radius.
    virtual KARStatus GetRadius(double& radius) const { return Copy(m_radius, radius); }

protected:
    KARMPCircle2D();
    /// A copy has the centre and the radius of its source.
    KARMPCircle2D(const KARMPCircle2D& source, CopyMode mode);
    ~KARMPCircle2D() override;

private:
    KARMathPoint2D m_center;
    double m_radius = 0.0;
};
