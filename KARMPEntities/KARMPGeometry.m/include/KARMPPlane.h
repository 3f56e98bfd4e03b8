#pragma once

#include "KARMPGeometry.h"
#include "KARMathPlane.h"

/// A plane without ends.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPPlane : public KARMPGeometry
{
    KARMP_ENTITY(KARMPPlane, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the plane.
    virtual KARStatus SetPlane(const KARMathPlane& plane) { return Copy(plane, m_plane); }
    /// Gives the plane.
    virtual KARStatus GetPlane(KARMathPlane& plane) const { return Copy(m_plane, plane); }

protected:
    KARMPPlane();
    KARMPPlane(const KARMPPlane& source, CopyMode mode);
    ~KARMPPlane() override;

private:
    KARMathPlane m_plane;
};
