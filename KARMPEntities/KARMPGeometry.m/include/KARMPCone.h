#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

/// A circular cone, given by its axis and angle.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPCone : public KARMPGeometry
{
    KARMP_ENTITY(KARMPCone, KARMPGeometry)

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
    /// Stores the angle between axis and side, in radians.
    virtual KARStatus SetAngle(double angle) { return Copy(angle, m_angle); }
    /// Gives the angle between axis and side, in radians.
    virtual KARStatus GetAngle(double& angle) const { return Copy(m_angle, angle); }

protected:
    KARMPCone();
    /// A copy has the angle of its source and is otherwise as new.
    KARMPCone(const KARMPCone& source, CopyMode mode);
    ~KARMPCone() override;

private:
    KARMathPoint m_origin;
    KARMathDirection m_axis;
    double m_angle = 0.0;
};
