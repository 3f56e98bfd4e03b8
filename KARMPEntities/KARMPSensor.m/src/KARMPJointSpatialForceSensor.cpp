#include "KARMPJointSpatialForceSensor.h"

#include "KARIMPJointSpatialForceSensorLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPJoint.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSensorUpdate.h"
#include "KARMPSpatialForce.h"

KARMP_DEFINE_ENTITY(KARMPJointSpatialForceSensor, "A91ADC9F-78C9-4B2E-816E-B9802095A00F");

template <>
struct karmp::ContentOf<KARMPJointSpatialForceSensor>
{
    using C = KARMPJointSpatialForceSensor;
    static constexpr auto List = Element(
        L"JointSpatialForceSensor", "Measures the force and the torque in a joint.", CountingFrame,
        Reference<&C::m_joint, &C::SetJoint>(L"Joint", "The joint that is measured."),
        SpatialForceItems<&C::m_bodyIndex, &C::m_force, &C::m_torque>());
};
KARMP_DEFINE_CONTENT(KARMPJointSpatialForceSensor);

KARMPJointSpatialForceSensor::KARMPJointSpatialForceSensor() = default;
KARMPJointSpatialForceSensor::KARMPJointSpatialForceSensor(
    const KARMPJointSpatialForceSensor& source, CopyMode mode)
    : Super(source, mode),
      m_bodyIndex(source.m_bodyIndex),
      m_force(source.m_force),
      m_torque(source.m_torque)
{}
KARMPJointSpatialForceSensor::~KARMPJointSpatialForceSensor() = default;

KARStatus KARMPJointSpatialForceSensor::Reset()
{
    m_force = {};
    m_torque = {};
    return KARSuccess;
}

KARStatus KARMPJointSpatialForceSensor::Update()
{
    return karmp::UpdateIfActive<KARIMPJointSpatialForceSensorLoader>(*this, KARUnchanged);
}

KARStatus KARMPJointSpatialForceSensor::GetLoader(
    KARIMPJointSpatialForceSensorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPJointSpatialForceSensor::SetIndexBody(int index)
{
    if (!karmp::VerifyBodyIndex(index))
        return KARFailure;
    m_bodyIndex = index;
    return KARSuccess;
}

KARStatus KARMPJointSpatialForceSensor::GetIndexBody(int& index) const
{
    if (!karmp::VerifyBodyIndex(m_bodyIndex))
        return KARFailure;
    index = m_bodyIndex;
    return KARSuccess;
}

KARStatus KARMPJointSpatialForceSensor::GetBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = nullptr;
    QOBSharedHandle<KARMPJoint> joint;
    return KARFailed(m_joint.Require(joint)) ? KARFailure : joint->GetLinkedBody(m_bodyIndex, body);
}

KARStatus KARMPJointSpatialForceSensor::SetSpatialForce(KARMathVector force, KARMathVector torque)
{
    m_force = force;
    m_torque = torque;
    return KARSuccess;
}

KARStatus KARMPJointSpatialForceSensor::GetSpatialForce(double* const forceAndTorque) const
{
    return karmp::CopySpatialForce(m_force, m_torque, forceAndTorque);
}

KARStatus KARMPJointSpatialForceSensor::GetSpatialForce(KARMathVector& force, KARMathVector& torque,
                                                        KARMPAxisMode::Enum mode) const
{
    force = m_force;
    torque = m_torque;
    return karmp::ExpressSpatialForce<KARIMPJointSpatialForceSensorLoader>(*this, mode, force,
                                                                           torque);
}

KARStatus KARMPJointSpatialForceSensor::GetJointFrame(KARMathAxis& frame) const
{
    return karmp::AskSensorLoader<KARIMPJointSpatialForceSensorLoader>(
        *this, [&frame](auto& loader) { return loader.ReadJointFrame(frame); });
}
