#pragma once

#include "KARMPGeometry.h"
#include "KARMathPlane.h"

/// The plane of a planar mechanism, in the axes of the spatial body that carries it: planar bodies
/// and geometries lie in it.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPSketch : public KARMPGeometry
{
    KARMP_ENTITY(KARMPSketch, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the plane.
    virtual KARStatus SetPlane(const KARMathPlane& plane) { return Copy(plane, m_plane); }
    /// Gives the plane.
    virtual KARStatus GetPlane(KARMathPlane& plane) const { return Copy(m_plane, plane); }

protected:
    KARMPSketch();
    KARMPSketch(const KARMPSketch& source, CopyMode mode);
    ~KARMPSketch() override;

private:
    KARMathPlane m_plane;
};
