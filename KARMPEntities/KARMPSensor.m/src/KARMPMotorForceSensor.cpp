#include "KARMPMotorForceSensor.h"

#include "KARIMPMotorForceSensorLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPMotor.h"
#include "KARMPSensorUpdate.h"

#include <algorithm>

KARMP_DEFINE_ENTITY(KARMPMotorForceSensor, "4385F77A-288F-49F2-982A-090E78F1AF36");

template <>
struct karmp::ContentOf<KARMPMotorForceSensor>
{
    using C = KARMPMotorForceSensor;
    // A motor drives lengths and angles, so the number has no quantity.
    static constexpr auto List =
        Element(L"MotorForceSensor", "Measures the force of a motor.", CountingFrame,
                Reference<&C::m_motor, &C::SetMotor>(L"Motor", "The motor that is measured."),
                Number<&C::m_force>(L"Force", "The measured force or torque."));
};
KARMP_DEFINE_CONTENT(KARMPMotorForceSensor);

KARMPMotorForceSensor::KARMPMotorForceSensor() = default;
KARMPMotorForceSensor::KARMPMotorForceSensor(const KARMPMotorForceSensor& source, CopyMode mode)
    : Super(source, mode),
      m_force(source.m_force),
      m_first(source.m_first),
      m_second(source.m_second)
{}
KARMPMotorForceSensor::~KARMPMotorForceSensor() = default;

KARStatus KARMPMotorForceSensor::Reset()
{
    m_force = 0.0;
    m_first = {};
    m_second = {};
    return KARSuccess;
}

KARStatus KARMPMotorForceSensor::Update()
{
    return karmp::UpdateIfActive<KARIMPMotorForceSensorLoader>(*this, KARUnchanged);
}

KARStatus KARMPMotorForceSensor::GetLoader(KARIMPMotorForceSensorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPMotorForceSensor::SetForce(double force, double* const first, double* const second)
{
    m_force = force;
    if (first != nullptr)
        std::copy_n(first, m_first.size(), m_first.begin());
    if (second != nullptr)
        std::copy_n(second, m_second.size(), m_second.begin());
    return KARSuccess;
}

KARStatus KARMPMotorForceSensor::GetForce(double& force, double* const first,
                                          double* const second) const
{
    force = m_force;
    if (first != nullptr)
        std::copy(m_first.begin(), m_first.end(), first);
    if (second != nullptr)
        std::copy(m_second.begin(), m_second.end(), second);
    return KARSuccess;
}
