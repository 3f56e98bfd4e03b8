#pragma once

#include "KARMPSensor.h"

#include <array>

class KARIMPMotorForceSensorLoader;
class KARMPMotor;

/// Measures the force, or torque, with which a motor drives its variable. Two triples come with it,
/// whose meaning is the solver's and which documents do not have.
class KARMP_API KARMPMotorForceSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPMotorForceSensor, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the force and both triples 0; always 0.
    KARStatus Reset() override;
    /// Has the loader measure; 1 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPMotorForceSensorLoader*& loader) const;
    using Super::GetLoader;

    /// Stores the motor that is measured. A null handle is a failed check and a failure, and the
    /// former motor stays.
    KARStatus SetMotor(const QOBSharedHandle<KARMPMotor>& motor) { return m_motor.Set(motor); }
    /// Gives the motor; without one a null handle, a failed check and a failure.
    KARStatus GetMotor(QOBSharedHandle<KARMPMotor>& motor) const { return m_motor.Require(motor); }
    /// Stores the force and two triples of doubles. A null pointer leaves its triple as it was;
    /// always 0.
    KARStatus SetForce(double force, double* const first, double* const second);
    /// Gives the force and fills two triples of doubles. A null pointer is passed over; always 0.
    KARStatus GetForce(double& force, double* const first, double* const second) const;

protected:
    KARMPMotorForceSensor();
    /// A copy has force and triples, and no motor.
    KARMPMotorForceSensor(const KARMPMotorForceSensor& source, CopyMode mode);
    ~KARMPMotorForceSensor() override;

private:
    KARMPLink<KARMPMotor> m_motor;
    double m_force = 0.0;
    std::array<double, 3> m_first{};
    std::array<double, 3> m_second{};
};
