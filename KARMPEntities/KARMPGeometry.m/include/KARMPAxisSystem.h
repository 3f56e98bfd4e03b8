#pragma once

#include "KARMPGeometry.h"
#include "KARMathAxis.h"

/// An axis system: an origin and three directions.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPAxisSystem : public KARMPGeometry
{
    KARMP_ENTITY(KARMPAxisSystem, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the axis system.
    virtual KARStatus SetAxisSystem(const KARMathAxis& axisSystem)
    {
        return Copy(axisSystem, m_axisSystem);
    }
    /// Gives the axis system.
    virtual KARStatus GetAxisSystem(KARMathAxis& axisSystem) const
    {
        return Copy(m_axisSystem, axisSystem);
    }

protected:
    KARMPAxisSystem();
    KARMPAxisSystem(const KARMPAxisSystem& source, CopyMode mode);
    ~KARMPAxisSystem() override;

private:
    KARMathAxis m_axisSystem;
};
