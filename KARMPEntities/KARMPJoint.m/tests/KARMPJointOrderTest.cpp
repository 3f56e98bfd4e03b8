#include "KARMPCouplingKinds.h"
#include "VirtualSlot.h"

#include <gtest/gtest.h>

#include <vector>

// Applications derive from these classes and are built apart from the library, so the order of the
// virtual operations is part of its interface.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

// Has a name for what entities keep to their families.
class OpenJoint : public KARMPJoint
{
public:
    static std::size_t LastOfEntities() { return VirtualSlot(&OpenJoint::RemoveParent); }
};

TEST(JointOrder, AJointsOperationsStandBehindThoseOfEntities)
{
    using GetLoader = KARStatus (KARMPJoint::*)(KARIMPJointLoader*&) const;
    ExpectSlotsBehind(OpenJoint::LastOfEntities(),
                      {VirtualSlot(static_cast<GetLoader>(&KARMPJoint::GetLoader)),
                       VirtualSlot(&KARMPJoint::GetFrames), VirtualSlot(&KARMPJoint::GetFrameCount),
                       VirtualSlot(&KARMPJoint::GetFrame),
                       VirtualSlot(&KARMPJoint::GetSolverEquivalentJointType),
                       VirtualSlot(&KARMPJoint::GetSolverEquivalentJointType2),
                       VirtualSlot(&KARMPJoint::SetSolverEquivalentJointType)});
}

template <class Kind>
void ExpectFramesBehindJoint()
{
    using GetFrames = KARStatus (Kind::*)(std::vector<KARMathAxis>&) const;
    using GetFrame = KARStatus (Kind::*)(int, KARMathAxis&) const;
    ExpectSlotsBehind(VirtualSlot(&KARMPJoint::SetSolverEquivalentJointType),
                      {VirtualSlot(static_cast<GetFrames>(&Kind::GetFrames)),
                       VirtualSlot(static_cast<GetFrame>(&Kind::GetFrame))});
}

TEST(JointOrder, TheFramesOfCouplingsStandBehindAJointsOperations)
{
    ExpectFramesBehindJoint<KARMPGear>();
    ExpectFramesBehindJoint<KARMPRack>();
    ExpectFramesBehindJoint<KARMPCable>();
}

} // namespace

#endif
