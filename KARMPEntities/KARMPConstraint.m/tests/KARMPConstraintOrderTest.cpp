#include "KARMPCoincidence.h"
#include "KARMPLinearEquation.h"
#include "KARMPRevoluteConstraint.h"
#include "VirtualSlot.h"

// Applications derive from these classes and are built apart from the library, so the order of the
// virtual operations is part of its interface.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

using C = KARMPConstraint;

/// The slot of an overloaded operation, by the types of its arguments.
template <class Class, class Result, class... Arguments>
std::size_t SlotOf(Result (Class::*operation)(Arguments...) const)
{
    return VirtualSlot(operation);
}

// Has a name for what entities keep to their families.
class OpenConstraint : public KARMPConstraint
{
public:
    static std::size_t LastOfEntities() { return VirtualSlot(&OpenConstraint::RemoveParent); }
};

TEST(ConstraintOrder, AConstraintsOperationsStandBehindThoseOfEntities)
{
    ExpectSlotsBehind(OpenConstraint::LastOfEntities(),
                      {SlotOf<C, KARStatus, KARIMPConstraintLoader*&>(&C::GetLoader),
                       VirtualSlot(&C::SetJoint),
                       VirtualSlot(&C::GetJoint),
                       VirtualSlot(&C::LinkToGeometry),
                       VirtualSlot(&C::GetLinkedGeometry),
                       VirtualSlot(&C::GetLinkedGeometryCount),
                       VirtualSlot(&C::LinkToVariable),
                       VirtualSlot(&C::GetLinkedVariable),
                       VirtualSlot(&C::GetLinkedVariableCount),
                       VirtualSlot(&C::LinkToSensor),
                       VirtualSlot(&C::GetLinkedSensor),
                       VirtualSlot(&C::GetLinkedSensorCount),
                       VirtualSlot(&C::AddConstraintParameter),
                       VirtualSlot(&C::GetConstraintParameter),
                       VirtualSlot(&C::GetConstraintParameterCount),
                       SlotOf<C, bool, double&>(&C::IsSatisfied),
                       SlotOf<C, bool>(&C::IsSatisfied),
                       SlotOf<C, KARStatus, int, double&, double&>(&C::CurrentValue),
                       SlotOf<C, KARStatus, double&>(&C::CurrentValue),
                       VirtualSlot(&C::CurrentOptions)});
}

TEST(ConstraintOrder, OperationsOfAClassStandBehindThoseOfConstraints)
{
    const std::size_t last = VirtualSlot(&C::CurrentOptions);
    ExpectSlotsBehind(last, {SlotOf<KARMPCoincidence, KARStatus, KARIMPCoincidenceLoader*&>(
                                &KARMPCoincidence::GetLoader)});
    using Kinematic = KARMPKinematicConstraint;
    ExpectSlotsBehind(last, {VirtualSlot(&Kinematic::getClassSerializeID_),
                             SlotOf<Kinematic, KARStatus, KARIMPKinematicConstraintLoader*&>(
                                 &Kinematic::GetLoader)});
    using Linear = KARMPLinearEquation;
    ExpectSlotsBehind(
        last, {VirtualSlot(&KARMPEquation::SetEquation), VirtualSlot(&KARMPEquation::GetEquation),
               VirtualSlot(&Linear::AddLinearTerm), VirtualSlot(&Linear::SetLinearTerm),
               VirtualSlot(&Linear::GetLinearTerm), VirtualSlot(&Linear::HasConstantTerm),
               VirtualSlot(&Linear::SetConstantTerm), VirtualSlot(&Linear::GetConstantTerm)});
}

} // namespace

#endif
