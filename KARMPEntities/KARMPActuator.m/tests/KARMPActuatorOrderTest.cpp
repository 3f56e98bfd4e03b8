#include "KARIMPDisplacementActuator2DLoader.h"
#include "KARIMPDisplacementActuatorLoader.h"
#include "KARIMPJointForceActuatorLoader.h"
#include "KARIMPMotorLoader.h"
#include "KARIMPSpatialForceActuator2DLoader.h"
#include "KARIMPSpatialForceActuatorLoader.h"
#include "KARMPDisplacementActuator.h"
#include "KARMPDisplacementActuator2D.h"
#include "KARMPJointForceActuator.h"
#include "KARMPMotor.h"
#include "KARMPSpatialForceActuator.h"
#include "KARMPSpatialForceActuator2D.h"
#include "VirtualSlot.h"

#include <gtest/gtest.h>

// Applications and solvers derive from these classes and are built apart from the library, so the
// order of the virtual operations is part of its interface.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

// Has a name for what entities keep to their families.
class OpenActuator : public KARMPActuator
{
public:
    static std::size_t Last() { return VirtualSlot(&OpenActuator::RemoveParent); }
};

template <class Actuator, class Loader>
std::size_t LoaderSlot()
{
    using GetLoader = KARStatus (Actuator::*)(Loader*&) const;
    return VirtualSlot(static_cast<GetLoader>(&Actuator::GetLoader));
}

TEST(ActuatorOrder, ActuatorsAddTheirLoaderFirst)
{
    for (const std::size_t slot :
         {LoaderSlot<KARMPDisplacementActuator, KARIMPDisplacementActuatorLoader>(),
          LoaderSlot<KARMPDisplacementActuator2D, KARIMPDisplacementActuator2DLoader>(),
          LoaderSlot<KARMPMotor, KARIMPMotorLoader>(),
          LoaderSlot<KARMPSpatialForceActuator, KARIMPSpatialForceActuatorLoader>(),
          LoaderSlot<KARMPSpatialForceActuator2D, KARIMPSpatialForceActuator2DLoader>()})
        EXPECT_EQ(slot, OpenActuator::Last() + 1);
}

TEST(ActuatorOrder, AJointForceAddsItsJoint)
{
    ExpectSlotsBehind(OpenActuator::Last(),
                      {LoaderSlot<KARMPJointForceActuator, KARIMPJointForceActuatorLoader>(),
                       VirtualSlot(&KARMPJointForceActuator::SetJoint),
                       VirtualSlot(&KARMPJointForceActuator::GetJoint)});
}

TEST(ActuatorOrder, LoadersAddTheirOperationsBehindTheHooks)
{
    const std::size_t last = VirtualSlot(&KARIMPEntityLoader::OnDeactivate);
    using Motor = KARIMPMotorLoader;
    ExpectSlotsBehind(last,
                      {VirtualSlot(&Motor::SetPosition), VirtualSlot(&Motor::SetVelocity),
                       VirtualSlot(&Motor::SetAcceleration), VirtualSlot(&Motor::SetMaxForce)});
    using Joint = KARIMPJointForceActuatorLoader;
    ExpectSlotsBehind(last, {VirtualSlot(&Joint::UpdateForce), VirtualSlot(&Joint::SetForce),
                             VirtualSlot(&Joint::SetIndexDOF), VirtualSlot(&Joint::SetJoint)});
    using Spatial = KARIMPSpatialForceActuatorLoader;
    ExpectSlotsBehind(last, {VirtualSlot(&Spatial::UpdateForce), VirtualSlot(&Spatial::SetForce),
                             VirtualSlot(&Spatial::SetTorque), VirtualSlot(&Spatial::SetBody),
                             VirtualSlot(&Spatial::SetApplicationPoint)});
    using Move = KARIMPDisplacementActuatorLoader;
    ExpectSlotsBehind(last, {VirtualSlot(&Move::SetDisplacement),
                             VirtualSlot(&Move::SetDisplacementByDragLine),
                             VirtualSlot(&Move::GetMoveStatus)});
}

template <class Loader, class Argument>
std::size_t SlotOf(KARStatus (Loader::*operation)(Argument))
{
    return VirtualSlot(operation);
}

TEST(ActuatorOrder, PlanarLoadersAddTheirOperationsBehindTheSpatialOnes)
{
    using Force = KARIMPSpatialForceActuator2DLoader;
    ExpectSlotsBehind(VirtualSlot(&KARIMPSpatialForceActuatorLoader::SetApplicationPoint),
                      {SlotOf<Force, const Force::ForceComponents&>(&Force::SetForce),
                       SlotOf<Force, const Force::TorqueComponents&>(&Force::SetTorque),
                       SlotOf<Force, const QOBSharedHandle<KARMPBody2D>&>(&Force::SetBody),
                       SlotOf<Force, const KARMathPoint2D&>(&Force::SetApplicationPoint)});
    using Move = KARIMPDisplacementActuator2DLoader;
    ExpectSlotsBehind(VirtualSlot(&KARIMPDisplacementActuatorLoader::GetMoveStatus),
                      {SlotOf<Move, const KARMathTransformation2D&>(&Move::SetDisplacement),
                       SlotOf<Move, const KARMathLine2D&>(&Move::SetDisplacementByDragLine)});
}

} // namespace

#endif
