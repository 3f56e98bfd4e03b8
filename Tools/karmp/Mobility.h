// The Grübler count of a mechanism from the kinds of its joints.
#pragma once

#include <map>
#include <string>

namespace karmp::tool {

/// How many degrees of freedom a mechanism has by the count of its bodies and joints alone. Special
/// geometry, as parallel axes, is not seen: a planar mechanism counts too few in space.
struct Mobility
{
    int spatial = 0;
    int planar = 0;
    bool mayBePlanar = false; // all counted joints exist in the plane as well
    int notCounted = 0;       // joints whose freedoms their kind does not tell
};

/// Counts `movingBodies` and the joints by class name. A coupling takes away one degree of freedom.
Mobility EstimateMobility(int movingBodies, const std::map<std::string, int>& jointsByClass);

} // namespace karmp::tool
