#include "KARMPBody.h"
#include "KARMPCollisionRule.h"
#include "KARMPConnector.h"
#include "KARMPSensor.h"
#include "KARMPShape.h"
#include "KARMPVariable.h"
#include "VirtualSlot.h"

// Applications derive from these classes and are built apart from the library, so the order of the
// virtual operations is part of its interface. VirtualOrderTest holds that of entities.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

// Has a name for what entities keep to their families.
template <class Family>
class Open : public Family
{
public:
    static std::size_t LastOfEntities() { return VirtualSlot(&Open::RemoveParent); }
};

// The slot of a family's own way to its loader.
template <class Family, class Loader>
std::size_t LoaderSlot()
{
    using GetLoader = KARStatus (Family::*)(Loader*&) const;
    return VirtualSlot(static_cast<GetLoader>(&Family::GetLoader));
}

TEST(FamilyOrder, ABodyAddsItsLoader)
{
    ExpectSlotsBehind(Open<KARMPBody>::LastOfEntities(),
                      {LoaderSlot<KARMPBody, KARIMPBodyLoader>()});
}

TEST(FamilyOrder, AVariablesOperationsStandBehindThoseOfEntities)
{
    using C = KARMPVariable;
    ExpectSlotsBehind(
        Open<C>::LastOfEntities(),
        {LoaderSlot<C, KARIMPVariableLoader>(), VirtualSlot(&C::LinkToConstraint),
         VirtualSlot(&C::GetLinkedConstraint), VirtualSlot(&C::GetLinkedConstraintCount),
         VirtualSlot(&C::HasValue), VirtualSlot(&C::SetValue), VirtualSlot(&C::GetValue),
         VirtualSlot(&C::UpdateValue), VirtualSlot(&C::HasMinValue), VirtualSlot(&C::SetMinValue),
         VirtualSlot(&C::GetMinValue), VirtualSlot(&C::HasMaxValue), VirtualSlot(&C::SetMaxValue),
         VirtualSlot(&C::GetMaxValue), VirtualSlot(&C::SetPhysicalQuantity),
         VirtualSlot(&C::GetPhysicalQuantity), VirtualSlot(&C::SetType), VirtualSlot(&C::GetType)});
}

TEST(FamilyOrder, AShapesOperationsStandBehindThoseOfEntities)
{
    using C = KARMPShape;
    ExpectSlotsBehind(Open<C>::LastOfEntities(),
                      {LoaderSlot<C, KARIMPShapeLoader>(), VirtualSlot(&C::LinkToBody),
                       VirtualSlot(&C::GetLinkedBody), VirtualSlot(&C::GetLinkedBodyCount)});
}

TEST(FamilyOrder, AConnectorsOperationsStandBehindThoseOfEntities)
{
    using C = KARMPConnector;
    ExpectSlotsBehind(Open<C>::LastOfEntities(),
                      {LoaderSlot<C, KARIMPConnectorLoader>(), VirtualSlot(&C::SetFirstBody),
                       VirtualSlot(&C::GetFirstBody), VirtualSlot(&C::SetSecondBody),
                       VirtualSlot(&C::GetSecondBody), VirtualSlot(&C::LinkToGeometry),
                       VirtualSlot(&C::GetLinkedGeometry), VirtualSlot(&C::GetLinkedGeometryCount),
                       VirtualSlot(&C::LinkToVariable), VirtualSlot(&C::GetLinkedVariable),
                       VirtualSlot(&C::GetLinkedVariableCount)});
}

TEST(FamilyOrder, AnInteractionsOperationsStandBehindThoseOfEntities)
{
    using C = KARMPInteraction;
    ExpectSlotsBehind(Open<C>::LastOfEntities(),
                      {VirtualSlot(&C::GetCollidable), VirtualSlot(&C::SetCollidable),
                       VirtualSlot(&C::AddCollidable), VirtualSlot(&C::RemoveCollidable),
                       VirtualSlot(&C::GetEntities)});
}

TEST(FamilyOrder, ACollisionRuleAddsThreeOperations)
{
    using C = KARMPCollisionRule;
    ExpectSlotsBehind(VirtualSlot(&C::GetEntities), {VirtualSlot(&C::GetDampingTransitionDepth),
                                                     VirtualSlot(&C::SetFrictionParameters),
                                                     VirtualSlot(&C::GetFrictionParameters)});
}

TEST(FamilyOrder, ASensorsOperationsStandBehindThoseOfEntities)
{
    using C = KARMPSensor;
    ExpectSlotsBehind(Open<C>::LastOfEntities(), {VirtualSlot(&C::Reset), VirtualSlot(&C::Update),
                                                  VirtualSlot(&C::RemoveConstraint)});
}

} // namespace

#endif
