#include "Mobility.h"

#include "KARMPBody2D.h"
#include "KARMPJoint2D.h"
#include "KARMPWorld.h"
#include "MechanismParts.h"
#include "PlanarFreedoms.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace karmp::tool {

namespace {

constexpr int SpatialFreedoms = 6;

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

Mobility EstimateMobility(int movingBodies, const std::map<std::string, int>& jointsByClass,
                          const PlanarCount& planar)
{
    Mobility mobility;
    const int freedomsInPlane = PlanarFreedoms * planar.movingBodies - planar.removed;
    mobility.spatial = SpatialFreedoms * movingBodies + freedomsInPlane;
    mobility.planar = PlanarFreedoms * movingBodies + freedomsInPlane;
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

Mobility EstimateMobility(const KARMPWorld& world)
{
    int movingBodies = 0;
    PlanarCount planar;
    for (int index = 0; index < world.GetBodyCount(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        if (world.Get<KARMPBody>(index, body) == KARSuccess && !IsFixed(*body))
            ++(body->isDerivedFrom(KARMPBody2D::ClassInfo()) ? planar.movingBodies : movingBodies);
    }
    std::map<std::string, int> jointsByClass;
    for (int index = 0; index < world.Count<KARMPJoint>(); ++index) {
        QOBSharedHandle<KARMPJoint> joint;
        if (world.Get<KARMPJoint>(index, joint) != KARSuccess)
            continue;
        const auto* const joint2D = dynamic_cast<const KARMPJoint2D*>(joint.get());
        const std::optional<int> removed =
            joint2D != nullptr ? FreedomsRemovedBy(*joint2D) : std::nullopt;
        if (removed)
            planar.removed += *removed;
        else
            ++jointsByClass[joint.getClassInfo().getName()];
    }
    return EstimateMobility(movingBodies, jointsByClass, planar);
}

} // namespace karmp::tool
