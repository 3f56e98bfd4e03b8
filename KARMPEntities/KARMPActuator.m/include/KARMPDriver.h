#pragma once

#include "KARMPActuator.h"

class KARMPMotor;

/// A list of motors that work together.
class KARMP_API KARMPDriver : public KARMPActuator
{
    KARMP_ENTITY(KARMPDriver, KARMPActuator)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Appends a motor. A null handle is a failed check and a failure; a motor that is listed
    /// already gives 1.
    KARStatus AddMotor(const QOBSharedHandle<KARMPMotor>& motor) { return m_motors.Add(motor); }
    /// Gives the motor at an index from 0; outside the list a null handle and a failure.
    KARStatus GetMotor(int index, QOBSharedHandle<KARMPMotor>& motor) const
    {
        return m_motors.Get(index, motor);
    }
    int GetMotorsCount() const { return m_motors.Count(); }

protected:
    void ClearContainers() override;

    KARMPDriver();
    /// A copy has no motors.
    KARMPDriver(const KARMPDriver& source, CopyMode mode);
    ~KARMPDriver() override;

private:
    KARMPLinkList<KARMPMotor> m_motors;
};
