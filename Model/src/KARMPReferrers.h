#pragma once

#include "KARMPModelCore.h"
#include "KARMPModelLinks.h"

#include <unordered_set>
#include <vector>

namespace karmp::model {

/// Some entities, by address.
using EntitySet = std::unordered_set<const KARMPEntity*>;

/// A reference to an entity that is asked for.
struct Referrer
{
    QOBSharedHandle<KARMPEntity> entity;
    const ItemInfo* item;
    QOBSharedHandle<KARMPEntity> target;
    /// The target refers back.
    bool isMutual;
};

/// The references to some entities that other entities hold, also where the target knows nothing of
/// them: those to which they refer back, then all others. Looks through the whole world.
std::vector<Referrer> FindReferrers(const Core& core,
                                    const std::vector<QOBSharedHandle<KARMPEntity>>& targets,
                                    const EntitySet& set);

} // namespace karmp::model
