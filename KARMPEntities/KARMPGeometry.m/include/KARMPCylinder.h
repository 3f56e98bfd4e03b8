// A circular cylinder, given by its axis and radius.
#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

class KARMP_API KARMPCylinder : public KARMPGeometry
{
    KARMP_ENTITY(KARMPCylinder, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores a point of the axis, as given; always 0.
    virtual KARStatus SetOrigin(const KARMathPoint& origin) { return Copy(origin, m_origin); }
    /// Hands out a point of the axis; always 0.
    virtual KARStatus GetOrigin(KARMathPoint& origin) const { return Copy(m_origin, origin); }
    /// Stores the direction of the axis, as given; always 0.
    virtual KARStatus SetAxis(const KARMathDirection& axis) { return Copy(axis, m_axis); }
    /// Hands out the direction of the axis; always 0.
    virtual KARStatus GetAxis(KARMathDirection& axis) const { return Copy(m_axis, axis); }
    /// Stores the radius, as given; always 0.
    virtual KARStatus SetRadius(double radius) { return Copy(radius, m_radius); }
    /// Hands out the radius; always 0.
    virtual KARStatus GetRadius(double& radius) const { return Copy(m_radius, radius); }

protected:
    KARMPCylinder();
    /// A copy has the radius of its source and is otherwise as new.
    KARMPCylinder(const KARMPCylinder& source, CopyMode mode);
    ~KARMPCylinder() override;

private:
    KARMathPoint m_origin;
    KARMathDirection m_axis;
    double m_radius = 0.0;
};
