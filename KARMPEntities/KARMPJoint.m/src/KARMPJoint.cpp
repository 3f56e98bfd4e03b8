#include "KARMPJoint.h"

#include "KARIMPJointLoader.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPContentWalk.h"
#include "KARMPJointAccess.h"
#include "KARMPJointFramesServices.h"
#include "KARMPLoaderAccess.h"
#include "KARMathAxis.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPJoint, "30EACC4A-72AF-49ac-828E-B6822908F37F");

template <>
struct karmp::ContentOf<KARMPJoint>
{
    using C = KARMPJoint;
    // A failing base ends the writing, too, and is no failure of the joint there.
    static constexpr ContentFrame Frame{{.failedBase = KARSuccess}, {}};
    static constexpr auto List =
        Base("A joint, which links bodies and holds the constraints that realise it.", Frame,
             ReferencesWith<&C::m_bodies, &C::LinkToBody>(
                 L"Bodies", L"Body", "The bodies that it links, in the order of linking.",
                 Since(R2017_1, EntryWord<KARMPBodyOrientation::Enum>(
                                    L"bodyOrientation", "The orientation of the body in the joint.")
                                    .Required()))
                 .Removing<&C::RemoveBody>()
                 .AlwaysNamed()
                 .InOrder()
                 .OtherSide(L"Joints"),
             References<&C::m_constraints, &C::AddConstraint>(L"Constraints", L"Constraint",
                                                              "The constraints that realise it.")
                 .Removing<&C::RemoveConstraint>()
                 .OtherSide(L"Joint"));
};
KARMP_DEFINE_CONTENT(KARMPJoint);

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
    return karmp::UnlinkJoint(QOBSharedHandle<KARMPJoint>(this), m_constraints, m_bodies);
}

KARStatus KARMPJoint::GetLoader(KARIMPJointLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPJoint::GetSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type) const
{
    return karmp::AskJointLoader<KARIMPJointLoader>(
        *this, [&type](auto& loader) { return loader.ReadSolverEquivalentJointType(type); });
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
    return karmp::AskJointLoader<KARIMPJointLoader>(
        *this, [&frames](auto& loader) { return loader.ReadFrames(frames); });
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
    return karmp::FrameAt(frames, index, frame);
}
