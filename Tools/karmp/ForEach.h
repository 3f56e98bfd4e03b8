// Walks over the entities of a world.
#pragma once

#include "KARMPWorld.h"

namespace karmp::tool {

/// Calls `visit` with each entity of a family.
template <class T, class Visit>
void ForEach(const KARMPWorld& world, Visit visit)
{
    for (int index = 0; index < world.Count<T>(); ++index) {
        QOBSharedHandle<T> entity;
        if (world.Get<T>(index, entity) == KARSuccess && entity)
            visit(*entity);
    }
}

} // namespace karmp::tool
