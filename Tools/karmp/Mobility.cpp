#include "Mobility.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace karmp::tool {

namespace {

constexpr int SpatialFreedoms = 6;
constexpr int PlanarFreedoms = 3;

/// The degrees of freedom that a kind of joint removes in space and in the plane; empty where the
/// kind has no planar counterpart.
struct Kind
{
    std::string_view className;
    int spatial;
    int planar;
};

constexpr int NotPlanar = -1;

constexpr std::array Kinds{Kind{"KARMPRevolute", 5, 2},
                           Kind{"KARMPPrismatic", 5, 2},
                           Kind{"KARMPCylindrical", 4, NotPlanar},
                           Kind{"KARMPSpherical", 3, NotPlanar},
                           Kind{"KARMPPlanar", 3, 0},
                           Kind{"KARMPUniversal", 4, NotPlanar},
                           Kind{"KARMPRigid", 6, 3},
                           Kind{"KARMPScrew", 5, NotPlanar},
                           Kind{"KARMPPointCurve", 2, 1},
                           Kind{"KARMPPointSurface", 1, NotPlanar},
                           Kind{"KARMPGear", 1, 1},
                           Kind{"KARMPRack", 1, 1},
                           Kind{"KARMPCable", 1, 1}};

} // namespace

Mobility EstimateMobility(int movingBodies, const std::map<std::string, int>& jointsByClass)
{
    Mobility mobility;
    mobility.spatial = SpatialFreedoms * movingBodies;
    mobility.planar = PlanarFreedoms * movingBodies;
    mobility.mayBePlanar = true;
    for (const auto& [className, count] : jointsByClass) {
        const auto kind = std::find_if(Kinds.begin(), Kinds.end(),
                                       [&name = className](Kind k) { return k.className == name; });
        if (kind == Kinds.end()) {
            mobility.notCounted += count;
            continue;
        }
        mobility.spatial -= kind->spatial * count;
        if (kind->planar == NotPlanar)
            mobility.mayBePlanar = false;
        else
            mobility.planar -= kind->planar * count;
    }
    return mobility;
}

} // namespace karmp::tool
