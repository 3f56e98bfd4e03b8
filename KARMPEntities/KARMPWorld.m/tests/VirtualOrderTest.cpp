#include "KARMPEntity.h"
#include "KARMPWorld.h"
#include "VirtualSlot.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Solvers and applications derive from these classes and are built apart from the library, so the
// order of the virtual operations is part of its interface.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

using Slots = VirtualSlots;

// Has names for what entities keep to their families.
class OpenEntity : public KARMPEntity
{
public:
    static Slots Hooks()
    {
        return {VirtualSlot(&OpenEntity::ClearContainers), VirtualSlot(&OpenEntity::RemoveParent)};
    }
    static Slots Root()
    {
        return {
            VirtualSlot(&OpenEntity::getClassName),    VirtualSlot(&OpenEntity::getClassInfo),
            VirtualSlot(&OpenEntity::isInstanceOf),    VirtualSlot(&OpenEntity::isDerivedFrom),
            VirtualSlot(&OpenEntity::orphanObject),    VirtualSlot(&OpenEntity::_replicateObject),
            VirtualSlot(&OpenEntity::_duplicateObject)};
    }
    static Slots BehindDestructor()
    {
        return {VirtualSlot(&OpenEntity::replicateObject),
                VirtualSlot(&OpenEntity::duplicateObject),
                VirtualSlot(&OpenEntity::getClassID),
                VirtualSlot(&OpenEntity::onNotificationTxn),
                VirtualSlot(&OpenEntity::getEntityTypeName),
                VirtualSlot(&OpenEntity::clearHistory),
                VirtualSlot(&OpenEntity::getSimulationTime),
                VirtualSlot(&OpenEntity::resetEntity),
                VirtualSlot(&OpenEntity::SetBuildingMode),
                VirtualSlot(&OpenEntity::GetBuildingMode),
                VirtualSlot(&OpenEntity::SetLoader),
                VirtualSlot(&OpenEntity::GetLoader),
                VirtualSlot(&OpenEntity::IsInWorld),
                VirtualSlot(&OpenEntity::GetWorld),
                VirtualSlot(&OpenEntity::Activate),
                VirtualSlot(&OpenEntity::Deactivate),
                VirtualSlot(&OpenEntity::IsActive),
                VirtualSlot(&OpenEntity::SetModelObject),
                VirtualSlot(&OpenEntity::GetModelObject),
                VirtualSlot(&OpenEntity::Serialize),
                VirtualSlot(&OpenEntity::Deserialize),
                VirtualSlot(&OpenEntity::IsThreadSafe)};
    }
};

class OpenWorld : public KARMPWorld
{
public:
    static Slots Root()
    {
        return {VirtualSlot(&OpenWorld::getClassName),    VirtualSlot(&OpenWorld::getClassInfo),
                VirtualSlot(&OpenWorld::isInstanceOf),    VirtualSlot(&OpenWorld::isDerivedFrom),
                VirtualSlot(&OpenWorld::orphanObject),    VirtualSlot(&OpenWorld::_replicateObject),
                VirtualSlot(&OpenWorld::_duplicateObject)};
    }
    static Slots BehindDestructor()
    {
        using Duplicate = QOBSharedObject* (KARMPWorld::*)(CopyMode) const;
        using DuplicateFor =
            QOBSharedObject* (KARMPWorld::*)(CopyMode, QOBSharedHandle<QOBNotificationAgent>) const;
        return {VirtualSlot(&OpenWorld::replicateObject),
                VirtualSlot(static_cast<Duplicate>(&OpenWorld::duplicateObject)),
                VirtualSlot(&OpenWorld::getClassID),
                VirtualSlot(&OpenWorld::onNotificationTxn),
                VirtualSlot(&OpenWorld::bindMembers),
                VirtualSlot(static_cast<DuplicateFor>(&OpenWorld::duplicateObject)),
                VirtualSlot(&OpenWorld::SetOrigin),
                VirtualSlot(&OpenWorld::GetOrigin),
                VirtualSlot(&OpenWorld::SetSize),
                VirtualSlot(&OpenWorld::GetSize),
                VirtualSlot(&OpenWorld::SetGravity),
                VirtualSlot(&OpenWorld::GetGravity),
                VirtualSlot(&OpenWorld::GetWBFactory)};
    }
};

// A destructor has two slots, which have no names.
constexpr std::size_t DestructorSlots = 2;

TEST(VirtualOrder, OfAnEntityIsFixed)
{
    const Slots root = OpenEntity::Root();
    const Slots rest = OpenEntity::BehindDestructor();
    ExpectSlotsFrom(0, root);
    ExpectSlotsFrom(root.size() + DestructorSlots, rest);
    ExpectSlotsFrom(root.size() + DestructorSlots + rest.size(), OpenEntity::Hooks());
}

TEST(VirtualOrder, OfAWorldIsFixed)
{
    const Slots root = OpenWorld::Root();
    ExpectSlotsFrom(0, root);
    ExpectSlotsFrom(root.size() + DestructorSlots, OpenWorld::BehindDestructor());
}

} // namespace

#endif
