#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

/// A parabola, given in its plane.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPParabola : public KARMPGeometry
{
    KARMP_ENTITY(KARMPParabola, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the centre.
    virtual KARStatus SetCenter(const KARMathPoint& center) { return Copy(center, m_center); }
    /// Gives the centre.
    virtual KARStatus GetCenter(KARMathPoint& center) const { return Copy(m_center, center); }
    /// Stores the direction of the major axis.
    virtual KARStatus SetMajorDirection(const KARMathDirection& majorDirection)
    {
        return Copy(majorDirection, m_majorDirection);
    }
    /// Gives the direction of the major axis.
    virtual KARStatus GetMajorDirection(KARMathDirection& majorDirection) const
    {
        return Copy(m_majorDirection, majorDirection);
    }
    /// Stores the normal of its plane.
    virtual KARStatus SetNormal(const KARMathDirection& normal) { return Copy(normal, m_normal); }
    /// Gives the normal of its plane.
    virtual KARStatus GetNormal(KARMathDirection& normal) const { return Copy(m_normal, normal); }
    /// Stores the curvature, one over a length.
    virtual KARStatus SetCurvature(double curvature) { return Copy(curvature, m_curvature); }
    /// Gives the curvature, one over a length.
    virtual KARStatus GetCurvature(double& curvature) const { return Copy(m_curvature, curvature); }

protected:
    KARMPParabola();
    /// A copy has the curvature of its source and is otherwise as new.
    KARMPParabola(const KARMPParabola& source, CopyMode mode);
    ~KARMPParabola() override;

private:
    KARMathPoint m_center;
    KARMathDirection m_majorDirection;
    KARMathDirection m_normal;
    double m_curvature = 0.0;
};
