#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

/// A circular cylinder, given by its axis and radius.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPCylinder : public KARMPGeometry
{
    KARMP_ENTITY(KARMPCylinder, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores a point of the axis.
    virtual KARStatus SetOrigin(const KARMathPoint& origin) { return Copy(origin, m_origin); }
    /// Gives a point of the axis.
    virtual KARStatus GetOrigin(KARMathPoint& origin) const { return Copy(m_origin, origin); }
    /// Stores the direction of the axis.
    virtual KARStatus SetAxis(const KARMathDirection& axis) { return Copy(axis, m_axis); }
    /// Gives the direction of the axis.
    virtual KARStatus GetAxis(KARMathDirection& axis) const { return Copy(m_axis, axis); }
    /// Stores the radius.
    virtual KARStatus SetRadius(double radius) { return Copy(radius, m_radius); }
    /// Gives the radius.
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
