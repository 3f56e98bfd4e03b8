// A point.
#pragma once

#include "KARMPGeometry.h"
#include "KARMathPoint.h"

class KARMP_API KARMPPoint : public KARMPGeometry
{
    KARMP_ENTITY(KARMPPoint, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the point, as given; always 0.
    virtual KARStatus SetPoint(const KARMathPoint& point) { return Copy(point, m_point); }
    /// Hands out the point; always 0.
    virtual KARStatus GetPoint(KARMathPoint& point) const { return Copy(m_point, point); }

protected:
    KARMPPoint();
    KARMPPoint(const KARMPPoint& source, CopyMode mode);
    ~KARMPPoint() override;

private:
    KARMathPoint m_point;
};
