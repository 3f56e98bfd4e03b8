#pragma once

#include "KARMPEntity.h"
#include "KARMPRegistry.h"
#include "KARMPWorld.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace karmp::model {

/// The registries of a world, in the order of karmp::Families.
std::vector<RegistryCore*> RegistriesOf(KARMPWorld& world);

/// How often one of them was had for a change, by others than those who keep them.
const std::uint32_t& ChangesOf(const KARMPWorld& world);

/// The index of no family.
inline constexpr auto NoFamily = static_cast<std::size_t>(-1);
/// The index of an entity's family among those; NoFamily for an entity that no world lists.
std::size_t FamilyOf(const KARMPEntity& entity);

} // namespace karmp::model
