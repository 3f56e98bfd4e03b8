#pragma once

#include "KARMPEntity.h"
#include "KARMPWorld.h"

#include <cstddef>
#include <span>

namespace karmp::model {

/// What a world does with the entities of one family.
struct FamilyOperations
{
    KARStatus (*add)(KARMPWorld& world, const QOBSharedHandle<KARMPEntity>& entity);
    KARStatus (*remove)(KARMPWorld& world, const QOBSharedHandle<KARMPEntity>& entity);
    std::size_t (*count)(const KARMPWorld& world);
    /// The entity at an index below the count, null for one that cannot be had.
    QOBSharedHandle<KARMPEntity> (*at)(const KARMPWorld& world, std::size_t index);
    /// True for an entity of the family.
    bool (*holds)(const KARMPEntity& entity);
};

/// Those of all families, in the order of karmp::Families.
std::span<const FamilyOperations> AllFamilies();
/// Those of an entity's family; null for an entity that no world lists.
const FamilyOperations* FamilyOf(const KARMPEntity& entity);

} // namespace karmp::model
