#include "KARMPJointForceActuator.h"

#include "KARIMPJointForceActuatorLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPFreedomIndex.h"
#include "KARMPJoint.h"
#include "KARMPLoaderAccess.h"
#include "KARMPValue.h"

KARMP_DEFINE_ENTITY(KARMPJointForceActuator, "C5C4CAB6-016C-4DE7-B2C7-C3EB7D3A6411");

template <>
struct karmp::ContentOf<KARMPJointForceActuator>
{
    using C = KARMPJointForceActuator;
    static bool HasForce(const C& actuator) { return static_cast<bool>(actuator.m_force); }
    static constexpr auto List = Element(
        L"JointForceActuator", "A force or torque along one freedom of a joint.", LenientFrame,
        ValueReference<&C::m_force, &C::SetForce>(L"Force", "The force or torque.")
            .Reported()
            .When<&HasForce>(),
        Reference<&C::m_joint, &C::SetJoint>(L"Joint", "The joint on which it acts."),
        Integer<&C::m_indexDOF>(L"DOFindex", "The index of the freedom, 0 to 5.")
            .Through<&C::SetIndexDOF>());
};
KARMP_DEFINE_CONTENT(KARMPJointForceActuator);

KARMPJointForceActuator::KARMPJointForceActuator() = default;
KARMPJointForceActuator::KARMPJointForceActuator(const KARMPJointForceActuator& source,
                                                 CopyMode mode)
    : Super(source, mode), m_indexDOF(source.m_indexDOF)
{}
KARMPJointForceActuator::~KARMPJointForceActuator() = default;

KARStatus KARMPJointForceActuator::GetLoader(KARIMPJointForceActuatorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPJointForceActuator::SetJoint(const QOBSharedHandle<KARMPJoint>& joint)
{
    if (const KARStatus status = m_joint.SetOther(joint); status != KARSuccess)
        return status;
    return karmp::PassToLoader<KARIMPJointForceActuatorLoader>(
        *this, [&](auto& loader) { return loader.SetJoint(joint); });
}

KARStatus KARMPJointForceActuator::GetJoint(QOBSharedHandle<KARMPJoint>& joint) const
{
    return m_joint.Require(joint);
}

KARStatus KARMPJointForceActuator::SetForce(const QOBSharedHandle<KARMPValue>& force)
{
    // The loader hears of a null handle as well.
    m_force.Set(force);
    return karmp::PassToLoader<KARIMPJointForceActuatorLoader>(
        *this, [&](auto& loader) { return loader.SetForce(force); });
}

KARStatus KARMPJointForceActuator::SetIndexDOF(const int& index)
{
    if (!karmp::IsFreedom(index))
        return KARFailure;
    m_indexDOF = index;
    return KARSuccess;
}

KARStatus KARMPJointForceActuator::GetIndexDOF(int& index) const
{
    if (!karmp::IsFreedom(m_indexDOF))
        return KARFailure;
    index = m_indexDOF;
    return KARSuccess;
}
