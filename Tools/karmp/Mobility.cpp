#include "Mobility.h"

#include "KARMPBody2D.h"
#include "KARMPConstraint.h"
#include "KARMPJoint2D.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "MechanismParts.h"

#include <algorithm>
#include <array>
#include <set>
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

// The number of variables of a joint's constraints, which are its freedoms.
int CountVariables(const KARMPJoint2D& joint)
{
    std::set<const KARMPVariable*> variables;
    for (int i = 0; i < joint.GetConstraintCount(); ++i) {
        QOBSharedHandle<KARMPConstraint> constraint;
        joint.GetConstraint(i, constraint);
        for (int j = 0; j < constraint->GetLinkedVariableCount(); ++j) {
            QOBSharedHandle<KARMPVariable> variable;
            constraint->GetLinkedVariable(j, variable);
            variables.insert(variable.get());
        }
    }
    return static_cast<int>(variables.size());
}

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
        const int variables = joint2D != nullptr ? CountVariables(*joint2D) : 0;
        if (variables > 0)
            planar.removed += std::max(PlanarFreedoms - variables, 0);
        else
            ++jointsByClass[joint.getClassInfo().getName()];
    }
    return EstimateMobility(movingBodies, jointsByClass, planar);
}

} // namespace karmp::tool
