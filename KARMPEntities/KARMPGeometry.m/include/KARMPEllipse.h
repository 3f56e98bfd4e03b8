#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

/// An ellipse, given in its plane.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPEllipse : public KARMPGeometry
{
    KARMP_ENTITY(KARMPEllipse, KARMPGeometry)

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
    /// Stores the major radius.
    virtual KARStatus SetMajorRadius(double majorRadius)
    {
        return Copy(majorRadius, m_majorRadius);
    }
    /// Gives the major radius.
    virtual KARStatus GetMajorRadius(double& majorRadius) const
    {
        return Copy(m_majorRadius, majorRadius);
    }
    /// Stores the minor radius.
    virtual KARStatus SetMinorRadius(double minorRadius)
    {
        return Copy(minorRadius, m_minorRadius);
    }
    /// Gives the minor radius.
    virtual KARStatus GetMinorRadius(double& minorRadius) const
    {
        return Copy(m_minorRadius, minorRadius);
    }

protected:
    KARMPEllipse();
    /// A copy has the radii of its source and is otherwise as new.
    KARMPEllipse(const KARMPEllipse& source, CopyMode mode);
    ~KARMPEllipse() override;

private:
    KARMathPoint m_center;
    KARMathDirection m_majorDirection;
    KARMathDirection m_normal;
    double m_majorRadius = 0.0;
    double m_minorRadius = 0.0;
};
