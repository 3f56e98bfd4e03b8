#include "KARMPConnectorSpatialForceSensor.h"

#include "KARIMPConnectorSpatialForceSensorLoader.h"
#include "KARMPConnector.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSensorUpdate.h"
#include "KARMPSpatialForce.h"

KARMP_DEFINE_ENTITY(KARMPConnectorSpatialForceSensor, "F5CC0AB7-E073-460A-AFFE-65ED0554FE91");

template <>
struct karmp::ContentOf<KARMPConnectorSpatialForceSensor>
{
    using C = KARMPConnectorSpatialForceSensor;
    static constexpr auto List =
        Element(L"ConnectorSpatialForceSensor", "Measures the force and the torque in a connector.",
                CountingFrame,
                Reference<&C::m_connector, &C::SetConnector>(L"Connector",
                                                             "The connector that is measured."),
                SpatialForceItems<&C::m_bodyIndex, &C::m_force, &C::m_torque>());
};
KARMP_DEFINE_CONTENT(KARMPConnectorSpatialForceSensor);

KARMPConnectorSpatialForceSensor::KARMPConnectorSpatialForceSensor() = default;
KARMPConnectorSpatialForceSensor::KARMPConnectorSpatialForceSensor(
    const KARMPConnectorSpatialForceSensor& source, CopyMode mode)
    : Super(source, mode),
      m_bodyIndex(source.m_bodyIndex),
      m_force(source.m_force),
      m_torque(source.m_torque)
{}
KARMPConnectorSpatialForceSensor::~KARMPConnectorSpatialForceSensor() = default;

KARStatus KARMPConnectorSpatialForceSensor::Reset()
{
    if (!karmp::VerifyBodyIndex(m_bodyIndex))
        return KARFailure;
    m_force = {};
    m_torque = {};
    return KARSuccess;
}

KARStatus KARMPConnectorSpatialForceSensor::Update()
{
    return karmp::UpdateIfActive<KARIMPConnectorSpatialForceSensorLoader>(*this, KARUnchanged);
}

KARStatus KARMPConnectorSpatialForceSensor::GetLoader(
    KARIMPConnectorSpatialForceSensorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPConnectorSpatialForceSensor::SetIndexBody(int index)
{
    if (!karmp::VerifyBodyIndex(index))
        return KARFailure;
    m_bodyIndex = index;
    return KARSuccess;
}

KARStatus KARMPConnectorSpatialForceSensor::GetIndexBody(int& index) const
{
    if (!karmp::VerifyBodyIndex(m_bodyIndex))
        return KARFailure;
    index = m_bodyIndex;
    return KARSuccess;
}

KARStatus KARMPConnectorSpatialForceSensor::SetSpatialForce(KARMathVector force,
                                                            KARMathVector torque)
{
    m_force = force;
    m_torque = torque;
    return KARSuccess;
}

KARStatus KARMPConnectorSpatialForceSensor::SetSpatialForce(int index,
                                                            double const* const forceAndTorque)
{
    if (index != m_bodyIndex)
        return KARFailure;
    if (!KARMPVerify(forceAndTorque != nullptr))
        return KARFailure;
    const double* const numbers = forceAndTorque;
    return SetSpatialForce({numbers[0], numbers[1], numbers[2]},
                           {numbers[3], numbers[4], numbers[5]});
}

KARStatus KARMPConnectorSpatialForceSensor::GetSpatialForce(int index,
                                                            double* const forceAndTorque) const
{
    if (index != m_bodyIndex)
        return KARFailure;
    return karmp::CopySpatialForce(m_force, m_torque, forceAndTorque);
}

KARStatus KARMPConnectorSpatialForceSensor::GetSpatialForce(KARMathVector& force,
                                                            KARMathVector& torque,
                                                            KARMPAxisMode::Enum mode) const
{
    force = m_force;
    torque = m_torque;
    return karmp::ExpressSpatialForce<KARIMPConnectorSpatialForceSensorLoader>(*this, mode, force,
                                                                               torque);
}

KARStatus KARMPConnectorSpatialForceSensor::GetConnectorFrame(KARMathAxis& frame) const
{
    return karmp::AskSensorLoader<KARIMPConnectorSpatialForceSensorLoader>(
        *this, [&frame](auto& loader) { return loader.ReadConnectorFrame(frame); });
}
