// How spatial and planar geometries take themselves out of what they are linked to.
#pragma once

#include "KARMPLink.h"
#include "KARMPUnlinkAll.h"

namespace karmp {

/// Takes a geometry out of its body, which it lets go, then out of its constraints in their order,
/// up to the first failure, which is the result.
template <class Geometry, class Body, class Constraint>
KARStatus UnlinkGeometry(Geometry& geometry, KARMPLink<Body>& body,
                         const KARMPLinkList<Constraint>& constraints,
                         KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const QOBSharedHandle<Geometry> self(&geometry);
    if (body) {
        const KARStatus status = body.Take()->RemoveGeometry(self);
        if (KARFailed(status))
            return status;
    }
    return UnlinkAll(
        constraints, [&self](Constraint& constraint) { return constraint.RemoveGeometry(self); },
        where);
}

} // namespace karmp
