// How the tests of the example documents walk through them.
#pragma once

#include "KARMPEntities.h"

namespace karmp::tool {

/// Calls with every entity of a family.
template <class Family, class Visit>
void ForEach(const KARMPWorld& world, Visit visit)
{
    for (int index = 0; index < world.Count<Family>(); ++index) {
        QOBSharedHandle<Family> entity;
        world.Get<Family>(index, entity);
        visit(entity);
    }
}

inline KARMathTransformation PositionOf(const KARMPBody& body)
{
    KARMathTransformation position;
    body.GetPosition(position);
    return position;
}

} // namespace karmp::tool
