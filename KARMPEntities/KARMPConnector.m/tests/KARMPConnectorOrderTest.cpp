#include "KARMPAxialSpring.h"
#include "KARMPBushing.h"
#include "KARMPForceElement.h"
#include "VirtualSlot.h"

// Applications derive from these classes and are built apart from the library, so the order of the
// virtual operations is part of its interface.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

/// The slot of an overloaded operation, by the types of its argument.
template <class Class, class Argument>
std::size_t SlotOf(KARStatus (Class::*operation)(Argument))
{
    return VirtualSlot(operation);
}
template <class Class, class Argument>
std::size_t SlotOf(KARStatus (Class::*operation)(Argument) const)
{
    return VirtualSlot(operation);
}

const std::size_t LastOfConnectors = VirtualSlot(&KARMPConnector::GetLinkedVariableCount);

TEST(ConnectorOrder, AnAxialSpringsOperationsStandBehindThoseOfConnectors)
{
    using C = KARMPAxialSpring;
    ExpectSlotsBehind(LastOfConnectors,
                      {SlotOf<C, KARIMPAxialSpringLoader*&>(&C::GetLoader),
                       VirtualSlot(&C::SetBehavior), VirtualSlot(&C::GetBehavior),
                       VirtualSlot(&C::SetRestLength), VirtualSlot(&C::GetRestLength),
                       VirtualSlot(&C::SetStiffness), VirtualSlot(&C::GetStiffness),
                       VirtualSlot(&C::SetActuatorForce), VirtualSlot(&C::GetActuatorForce),
                       VirtualSlot(&C::SetDamping), VirtualSlot(&C::GetDamping)});
}

TEST(ConnectorOrder, ABushingsOperationsStandBehindThoseOfConnectors)
{
    using C = KARMPBushing;
    ExpectSlotsBehind(LastOfConnectors,
                      {SlotOf<C, KARIMPBushingLoader*&>(&C::GetLoader),
                       VirtualSlot(&C::SetStiffness), VirtualSlot(&C::GetStiffness),
                       VirtualSlot(&C::SetDamping), VirtualSlot(&C::GetDamping),
                       VirtualSlot(&C::SetPreLoadForce), VirtualSlot(&C::GetPreLoadForce)});
}

TEST(ConnectorOrder, AForceElementsOperationsStandBehindThoseOfConnectors)
{
    using C = KARMPForceElement;
    ExpectSlotsBehind(LastOfConnectors, {SlotOf<C, KARIMPForceElementLoader*&>(&C::GetLoader),
                                         VirtualSlot(&C::SetJoint), VirtualSlot(&C::GetJoint)});
}

} // namespace

#endif
