#pragma once

#include "KARMPGeometry2D.h"
#include "KARMathPoint2D.h"

/// A point of a plane.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPPoint2D : public KARMPGeometry2D
{
    KARMP_ENTITY(KARMPPoint2D, KARMPGeometry2D)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the point.
    virtual KARStatus SetPoint(const KARMathPoint2D& point) { return Copy(point, m_point); }
    /// Gives the point.
    virtual KARStatus GetPoint(KARMathPoint2D& point) const { return Copy(m_point, point); }

protected:
    KARMPPoint2D();
    KARMPPoint2D(const KARMPPoint2D& source, CopyMode mode);
    ~KARMPPoint2D() override;

private:
    KARMathPoint2D m_point;
};
