#include "KARMPAxialSpring.h"
#include "KARMPBushing.h"
#include "KARMPForceElement.h"
#include "KARMPLinearSpring.h"
#include "KARMPTorsionSpring.h"
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

/// The slots of a value's setters and getters, the double forms behind those for values.
#    define VALUE_SLOTS(Class, Name)                                                               \
        SlotOf<Class, const Class::Value&>(&Class::Set##Name),                                     \
            SlotOf<Class, double>(&Class::Set##Name),                                              \
            SlotOf<Class, Class::Value&>(&Class::Get##Name),                                       \
            SlotOf<Class, double&>(&Class::Get##Name)

TEST(ConnectorOrder, ALinearSpringsOperationsStandBehindThoseOfConnectors)
{
    using C = KARMPLinearSpring;
    ExpectSlotsBehind(LastOfConnectors,
                      {SlotOf<C, KARIMPLinearSpringLoader*&>(&C::GetLoader),
                       VirtualSlot(&C::SetFirstAttachment), VirtualSlot(&C::GetFirstAttachment),
                       VirtualSlot(&C::SetSecondAttachment), VirtualSlot(&C::GetSecondAttachment),
                       VALUE_SLOTS(C, Stiffness), VALUE_SLOTS(C, RestLength),
                       VALUE_SLOTS(C, DampingCoefficient), VirtualSlot(&C::SetBehavior),
                       VirtualSlot(&C::GetBehavior)});
}

TEST(ConnectorOrder, ATorsionSpringsOperationsStandBehindThoseOfConnectors)
{
    using C = KARMPTorsionSpring;
    ExpectSlotsBehind(LastOfConnectors,
                      {SlotOf<C, KARIMPTorsionSpringLoader*&>(&C::GetLoader),
                       VirtualSlot(&C::SetFirstAttachment), VirtualSlot(&C::GetFirstAttachment),
                       VirtualSlot(&C::SetSecondAttachment), VirtualSlot(&C::GetSecondAttachment),
                       VALUE_SLOTS(C, Stiffness), VALUE_SLOTS(C, RestAngle),
                       VALUE_SLOTS(C, DampingCoefficient), VirtualSlot(&C::SetBehavior),
                       VirtualSlot(&C::GetBehavior)});
}

} // namespace

#endif
