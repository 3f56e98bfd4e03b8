// What actuators, connectors, sensors and interactions act on, measure and relate.
#pragma once

#include "KARMPItems.h"

#include <functional>
#include <string>
#include <vector>

namespace karmp::tool {

/// Calls `visit` with each entity that an entity acts on, measures or relates: what it refers to,
/// without the values that it has as numbers and what every entity may hold.
void ForEachOwnTarget(const KARMPEntity& entity,
                      const std::function<void(const QOBSharedHandle<KARMPEntity>&)>& visit);

/// The bodies, joints and connectors that an entity is about: those that it refers to, or the
/// nearest ones behind motors, variables, constraints, geometries, shapes and interactions. A
/// variable belongs to the joint that has it as a freedom before the couplings that use it.
std::vector<QOBSharedHandle<KARMPEntity>> SubjectsOf(const KARMPEntity& entity);

/// The targets of an entity by class and name, a variable and a constraint with its joint, and the
/// lengths of its lists of records; "no target" when there is none. Ten targets are named.
std::string TargetsText(const KARMPEntity& entity);

} // namespace karmp::tool
