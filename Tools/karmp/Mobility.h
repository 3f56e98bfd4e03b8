// The Grübler count of a mechanism from the kinds of its joints.
#pragma once

#include <map>
#include <string>

class KARMPWorld;

namespace karmp::tool {

/// The number of degrees of freedom of a mechanism by the count of its bodies and joints alone.
/// Special geometry, such as parallel axes, is not considered: in space a planar mechanism counts
/// too few.
struct Mobility
{
    int spatial = 0;
    int planar = 0;
    bool mayBePlanar = false; // all counted joints exist in the plane as well
    int notCounted = 0;       // joints of a kind whose freedoms are not fixed
};

/// The planar bodies that move, and what planar joints remove of their degrees of freedom.
struct PlanarCount
{
    int movingBodies = 0;
    int removed = 0;
};

/// Counts `movingBodies` in space and the joints by class name. A coupling removes one degree of
/// freedom. Planar bodies have three degrees of freedom, in space as well.
Mobility EstimateMobility(int movingBodies, const std::map<std::string, int>& jointsByClass,
                          const PlanarCount& planar = {});
/// Counts the bodies of a world that are not fixed and its joints. What planar joints remove is
/// told by FreedomsRemovedBy; where that tells nothing they are not counted.
Mobility EstimateMobility(const KARMPWorld& world);

} // namespace karmp::tool
