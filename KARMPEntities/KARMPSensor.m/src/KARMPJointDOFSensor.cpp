#include "KARMPJointDOFSensor.h"

#include "KARIMPJointDOFSensorLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPFreedomIndex.h"
#include "KARMPJoint.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSensorUpdate.h"

KARMP_DEFINE_ENTITY(KARMPJointDOFSensor, "6AFCD03F-F0F3-4A5D-B052-65E8C2D57A58");

template <>
struct karmp::ContentOf<KARMPJointDOFSensor>
{
    using C = KARMPJointDOFSensor;
    // The quantities depend on the freedom. The index is read as it stands in the document.
    static constexpr auto List = Element(
        L"JointDOFSensor", "Measures one freedom of a joint.", CountingFrame,
        Reference<&C::m_joint, &C::SetJoint>(L"Joint", "The joint that is measured."),
        Number<&C::m_position>(L"Position", "How far the freedom has moved: a length along an axis "
                                            "of the joint's frame, or an angle about it."),
        Number<&C::m_velocity>(
            L"Velocity",
            "The velocity of the freedom: linear for a translation, angular for a rotation."),
        Number<&C::m_acceleration>(
            L"Acceleration",
            "The acceleration of the freedom: linear for a translation, angular for a rotation."),
        Integer<&C::m_index>(L"DOFindex", "The freedom: 0 to 2 a translation, 3 to 5 a rotation."));
};
KARMP_DEFINE_CONTENT(KARMPJointDOFSensor);

KARMPJointDOFSensor::KARMPJointDOFSensor() = default;
KARMPJointDOFSensor::KARMPJointDOFSensor(const KARMPJointDOFSensor& source, CopyMode mode)
    : Super(source, mode),
      m_index(source.m_index),
      m_position(source.m_position),
      m_velocity(source.m_velocity),
      m_acceleration(source.m_acceleration)
{}
KARMPJointDOFSensor::~KARMPJointDOFSensor() = default;

KARStatus KARMPJointDOFSensor::Reset()
{
    m_index = 0;
    m_position = 0.0;
    m_velocity = 0.0;
    m_acceleration = 0.0;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::Update()
{
    return karmp::UpdateIfActive<KARIMPJointDOFSensorLoader>(*this, KARUnchanged);
}

KARStatus KARMPJointDOFSensor::GetLoader(KARIMPJointDOFSensorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPJointDOFSensor::SetIndexDOF(int index)
{
    if (!karmp::IsFreedom(index))
        return KARFailure;
    m_index = index;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::GetIndexDOF(int& index) const
{
    if (!karmp::IsFreedom(m_index))
        return KARFailure;
    index = m_index;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::SetPosition(double position)
{
    m_position = position;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::GetPosition(double& position) const
{
    position = m_position;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::SetVelocity(double velocity)
{
    m_velocity = velocity;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::GetVelocity(double& velocity) const
{
    velocity = m_velocity;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::SetAcceleration(double acceleration)
{
    m_acceleration = acceleration;
    return KARSuccess;
}

KARStatus KARMPJointDOFSensor::GetAcceleration(double& acceleration) const
{
    acceleration = m_acceleration;
    return KARSuccess;
}
