// A hyperbola, given in its plane.
#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

class KARMP_API KARMPHyperbola : public KARMPGeometry
{
    KARMP_ENTITY(KARMPHyperbola, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the centre, as given; always 0.
    virtual KARStatus SetCenter(const KARMathPoint& center) { return Copy(center, m_center); }
    /// Hands out the centre; always 0.
    virtual KARStatus GetCenter(KARMathPoint& center) const { return Copy(m_center, center); }
    /// Stores the direction of the major axis, as given; always 0.
    virtual KARStatus SetMajorDirection(const KARMathDirection& majorDirection)
    {
        return Copy(majorDirection, m_majorDirection);
    }
    /// Hands out the direction of the major axis; always 0.
    virtual KARStatus GetMajorDirection(KARMathDirection& majorDirection) const
    {
        return Copy(m_majorDirection, majorDirection);
    }
    /// Stores the normal of its plane, as given; always 0.
    virtual KARStatus SetNormal(const KARMathDirection& normal) { return Copy(normal, m_normal); }
    /// Hands out the normal of its plane; always 0.
    virtual KARStatus GetNormal(KARMathDirection& normal) const { return Copy(m_normal, normal); }
    /// Stores the major radius, as given; always 0.
    virtual KARStatus SetMajorRadius(double majorRadius)
    {
        return Copy(majorRadius, m_majorRadius);
    }
    /// Hands out the major radius; always 0.
    virtual KARStatus GetMajorRadius(double& majorRadius) const
    {
        return Copy(m_majorRadius, majorRadius);
    }
    /// Stores the minor radius, as given; always 0.
    virtual KARStatus SetMinorRadius(double minorRadius)
    {
        return Copy(minorRadius, m_minorRadius);
    }
    /// Hands out the minor radius; always 0.
    virtual KARStatus GetMinorRadius(double& minorRadius) const
    {
        return Copy(m_minorRadius, minorRadius);
    }

protected:
    KARMPHyperbola();
    /// A copy has the radii of its source and is otherwise as new.
    KARMPHyperbola(const KARMPHyperbola& source, CopyMode mode);
    ~KARMPHyperbola() override;

private:
    KARMathPoint m_center;
    KARMathDirection m_majorDirection;
    KARMathDirection m_normal;
    double m_majorRadius = 0.0;
    double m_minorRadius = 0.0;
};
