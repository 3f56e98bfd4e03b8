#include "KARMPJoint2D.h"

#include "KARIMPJoint2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPConstraint.h"
#include "KARMPContentWalk.h"
#include "KARMPJointAccess.h"
#include "KARMPLoaderAccess.h"
#include "KARMathAxis2D.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPJoint2D, "6B6E2CD1-F7E2-401C-89D6-8E633D75DDF1");

template <>
struct karmp::ContentOf<KARMPJoint2D>
{
    using C = KARMPJoint2D;
    // As that of a joint in space, whose content is no part of this one.
    static constexpr ContentFrame Frame{{.failedBase = KARSuccess}, {}};
    static constexpr auto List =
        Base("A planar joint, which links planar bodies and holds the constraints that realise it.",
             Frame,
             ReferencesWith<&C::m_bodies, &C::LinkToBody>(
                 L"Bodies2D", L"Body2D", "The bodies that it links, in the order of linking.",
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
KARMP_DEFINE_CONTENT(KARMPJoint2D, KARMPEntity);

KARMPJoint2D::KARMPJoint2D() = default;

KARMPJoint2D::KARMPJoint2D(const KARMPJoint2D& source, CopyMode mode)
    : Super(source, mode), m_solverEquivalentType(source.m_solverEquivalentType)
{}

KARMPJoint2D::~KARMPJoint2D() = default;

void KARMPJoint2D::ClearContainers()
{
    m_constraints.Clear();
    m_bodies.Clear();
}

KARStatus KARMPJoint2D::RemoveParent()
{
    return karmp::UnlinkJoint(QOBSharedHandle<KARMPJoint2D>(this), m_constraints, m_bodies);
}

KARStatus KARMPJoint2D::GetLoader(KARIMPJoint2DLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPJoint2D::GetSolverEquivalentJointType(
    KARMPSolverEquivalentJointType::Enum& type) const
{
    return karmp::AskJointLoader<KARIMPJoint2DLoader>(
        *this, [&type](auto& loader) { return loader.ReadSolverEquivalentJointType(type); });
}

KARStatus KARMPJoint2D::SetSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type)
{
    m_solverEquivalentType = type;
    return KARSuccess;
}

KARStatus KARMPJoint2D::GetFrames(std::vector<KARMathAxis2D>& frames) const
{
    return karmp::AskJointLoader<KARIMPJoint2DLoader>(
        *this, [&frames](auto& loader) { return loader.ReadFrames(frames); });
}

int KARMPJoint2D::GetFrameCount() const
{
    std::vector<KARMathAxis2D> frames;
    GetFrames(frames);
    return static_cast<int>(frames.size());
}

KARStatus KARMPJoint2D::GetFrame(int index, KARMathAxis2D& frame) const
{
    std::vector<KARMathAxis2D> frames;
    GetFrames(frames);
    return karmp::FrameAt(frames, index, frame);
}
