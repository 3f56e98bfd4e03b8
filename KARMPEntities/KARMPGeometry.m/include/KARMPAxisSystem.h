// An axis system: an origin and three directions.
#pragma once

#include "KARMPGeometry.h"
#include "KARMathAxis.h"

class KARMP_API KARMPAxisSystem : public KARMPGeometry
{
    KARMP_ENTITY(KARMPAxisSystem, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the axis system, as given; always 0.
    virtual KARStatus SetAxisSystem(const KARMathAxis& axisSystem)
    {
        return Copy(axisSystem, m_axisSystem);
    }
    /// Hands out the axis system; always 0.
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
