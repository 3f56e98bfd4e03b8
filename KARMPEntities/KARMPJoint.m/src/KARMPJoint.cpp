#include "KARMPJoint.h"

#include "KARIMPJointLoader.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPJointFramesServices.h"
#include "KARMPJointLinks.h"
#include "KARMPLoaderAccess.h"
#include "KARMathAxis.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPJoint, "30EACC4A-72AF-49ac-828E-B6822908F37F");

KARMPJoint::KARMPJoint() = default;

KARMPJoint::KARMPJoint(const KARMPJoint& source, CopyMode mode)
    : Super(source, mode), m_solverEquivalentType(source.m_solverEquivalentType)
{}

KARMPJoint::~KARMPJoint() = default;

void KARMPJoint::ClearContainers()
{
    m_constraints.Clear();
    m_bodies.Clear();
}

KARStatus KARMPJoint::RemoveParent()
{
    const QOBSharedHandle<KARMPJoint> self(this);
    const KARStatus status = karmp::RemoveFromAll(m_constraints, self, KARSuccess);
    return karmp::RemoveFromAll(m_bodies.Bodies(), self, status);
}

KARStatus KARMPJoint::LinkToBody(const QOBSharedHandle<KARMPBody>& body,
                                 KARMPBodyOrientation::Enum orientation)
{
    return m_bodies.Add(body, orientation);
}

KARStatus KARMPJoint::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    return m_bodies.Remove(body);
}

KARStatus KARMPJoint::GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body) const
{
    return m_bodies.Get(index, body);
}

KARStatus KARMPJoint::GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body,
                                    KARMPBodyOrientation::Enum& orientation) const
{
    return m_bodies.Get(index, body, orientation);
}

KARStatus KARMPJoint::AddConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_constraints.Add(constraint);
}

KARStatus KARMPJoint::RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_constraints.Remove(constraint);
}

KARStatus KARMPJoint::InsertConstraint(int index,
                                       const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_constraints.Insert(index, constraint);
}

KARStatus KARMPJoint::GetConstraint(int index, QOBSharedHandle<KARMPConstraint>& constraint) const
{
    return m_constraints.Get(index, constraint);
}

KARStatus KARMPJoint::GetLoader(KARIMPJointLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPJoint::GetSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type) const
{
    KARIMPJointLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetLoader(loader))))
        return KARFailure;
    return loader != nullptr ? loader->ReadSolverEquivalentJointType(type) : KARUnchanged;
}

KARStatus KARMPJoint::GetSolverEquivalentJointType2(
    KARMPSolverEquivalentJointType::Enum& type) const
{
    KARIMPJointLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetLoader(loader)) && loader != nullptr))
        return KARFailure;
    return loader->ReadSolverEquivalentJointType2(type);
}

KARStatus KARMPJoint::SetSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type)
{
    m_solverEquivalentType = type;
    return KARSuccess;
}

KARStatus KARMPJoint::GetFrames(std::vector<KARMathAxis>& frames, unsigned char local,
                                unsigned char compute) const
{
    if (compute != 0)
        return KARMPJointFramesServices::ComputeFrames(this, frames, local);
    KARIMPJointLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetLoader(loader))))
        return KARFailure;
    return loader != nullptr ? loader->ReadFrames(frames) : KARUnchanged;
}

int KARMPJoint::GetFrameCount() const
{
    std::vector<KARMathAxis> frames;
    GetFrames(frames, 0, 0);
    return static_cast<int>(frames.size());
}

KARStatus KARMPJoint::GetFrame(int index, KARMathAxis& frame, unsigned char local) const
{
    std::vector<KARMathAxis> frames;
    GetFrames(frames, local, 0);
    if (index < 0 || static_cast<std::size_t>(index) >= frames.size())
        return KARFailure;
    frame = frames[static_cast<std::size_t>(index)];
    return KARSuccess;
}

KARStatus KARMPJoint::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element)
        return KARFailure;
    // Unlike in reading, a failing base ends the writing and is no failure of the joint.
    if (!element.Base(Super::Serialize(element.Node())))
        return KARSuccess;
    karmp::WriteLinkedBodies(element, L"Bodies", L"Body", m_bodies);
    element.References(L"Constraints", L"Constraint", m_constraints);
    return KARSuccess;
}

KARStatus KARMPJoint::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    karmp::ReadLinkedBodies<KARMPBody>(
        element, L"Bodies", L"Body", entities,
        [this](const auto& body, auto orientation) { return LinkToBody(body, orientation); });
    element.References<KARMPConstraint>(
        L"Constraints", L"Constraint", entities,
        [this](const auto& constraint) { return AddConstraint(constraint); });
    return KARSuccess;
}
