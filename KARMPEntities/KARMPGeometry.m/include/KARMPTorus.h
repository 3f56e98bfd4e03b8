#pragma once

#include "KARMPGeometry.h"
#include "KARMathDirection.h"
#include "KARMathPoint.h"

/// A torus, given by its centre, the normal of its middle circle and its two radii.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPTorus : public KARMPGeometry
{
    KARMP_ENTITY(KARMPTorus, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the centre.
    virtual KARStatus SetCenter(const KARMathPoint& center) { return Copy(center, m_center); }
    /// Gives the centre.
    virtual KARStatus GetCenter(KARMathPoint& center) const { return Copy(m_center, center); }
    /// Stores the normal of the middle circle's plane.
    virtual KARStatus SetNormal(const KARMathDirection& normal) { return Copy(normal, m_normal); }
    /// Gives the normal of the middle circle's plane.
    virtual KARStatus GetNormal(KARMathDirection& normal) const { return Copy(m_normal, normal); }
    /// Stores the radius of the middle circle.
    virtual KARStatus SetMajorRadius(double majorRadius)
    {
        return Copy(majorRadius, m_majorRadius);
    }
    /// Gives the radius of the middle circle.
    virtual KARStatus GetMajorRadius(double& majorRadius) const
    {
        return Copy(m_majorRadius, majorRadius);
    }
    /// Stores the radius of the tube.
    virtual KARStatus SetMinorRadius(double minorRadius)
    {
        return Copy(minorRadius, m_minorRadius);
    }
    /// Gives the radius of the tube.
    virtual KARStatus GetMinorRadius(double& minorRadius) const
    {
        return Copy(m_minorRadius, minorRadius);
    }

protected:
    KARMPTorus();
    /// A copy has the radii of its source and is otherwise as new.
    KARMPTorus(const KARMPTorus& source, CopyMode mode);
    ~KARMPTorus() override;

private:
    KARMathPoint m_center;
    KARMathDirection m_normal;
    double m_majorRadius = 0.0;
    double m_minorRadius = 0.0;
};
