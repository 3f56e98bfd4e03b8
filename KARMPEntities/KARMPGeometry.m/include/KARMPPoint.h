#pragma once

#include "KARMPGeometry.h"
#include "KARMathPoint.h"

/// A point.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPPoint : public KARMPGeometry
{
    KARMP_ENTITY(KARMPPoint, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the point.
    virtual KARStatus SetPoint(const KARMathPoint& point) { return Copy(point, m_point); }
    /// Gives the point.
    virtual KARStatus GetPoint(KARMathPoint& point) const { return Copy(m_point, point); }

protected:
    KARMPPoint();
    KARMPPoint(const KARMPPoint& source, CopyMode mode);
    ~KARMPPoint() override;

private:
    KARMathPoint m_point;
};
