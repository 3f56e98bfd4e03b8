#pragma once

#include "KARMPGeometry.h"
#include "KARMathCircle.h"

/// A circle.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPCircle : public KARMPGeometry
{
    KARMP_ENTITY(KARMPCircle, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the circle.
    virtual KARStatus SetCircle(const KARMathCircle& circle) { return Copy(circle, m_circle); }
    /// Gives the circle.
    virtual KARStatus GetCircle(KARMathCircle& circle) const { return Copy(m_circle, circle); }

protected:
    KARMPCircle();
    KARMPCircle(const KARMPCircle& source, CopyMode mode);
    ~KARMPCircle() override;

private:
    KARMathCircle m_circle;
};
