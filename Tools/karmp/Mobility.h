// The Grübler count of a mechanism from the kinds of its joints.
#pragma once

#include <map>
#include <string>

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

/// Counts `movingBodies` and the joints by class name. A coupling removes one degree of freedom.
Mobility EstimateMobility(int movingBodies, const std::map<std::string, int>& jointsByClass);

} // namespace karmp::tool
