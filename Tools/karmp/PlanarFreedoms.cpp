#include "PlanarFreedoms.h"

#include "KARMPConstraint.h"
#include "KARMPGeometry.h"
#include "KARMPJoint2D.h"
#include "KARMPVariable.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

namespace karmp::tool {

namespace {

/// A constraint that removes the same degrees of freedom whatever it is between.
struct Kind
{
    std::string_view className;
    int removed;
};

constexpr std::array Kinds{Kind{"KARMP0DoF", 3},
                           Kind{"KARMP6DoF", 0},
                           Kind{"KARMPAngle", 1},
                           Kind{"KARMPConcentricity", 2},
                           Kind{"KARMPDistance", 1},
                           Kind{"KARMPParallelism", 1},
                           Kind{"KARMPPerpendicularity", 1},
                           Kind{"KARMPPrismaticConstraint", 2},
                           Kind{"KARMPRevoluteConstraint", 2},
                           Kind{"KARMPRollCurveConstraint", 2},
                           Kind{"KARMPTangency", 1}};

template <class... Names>
bool IsOneOf(std::string_view kind, Names... names)
{
    return ((kind == names) || ...);
}

// Two points, lines or circles become one; a point on anything else slides along it.
std::optional<int> RemovedByCoincidence(const KARMPConstraint& coincidence)
{
    std::array<std::string_view, 2> kinds;
    if (coincidence.GetLinkedGeometryCount() != static_cast<int>(kinds.size()))
        return std::nullopt;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        QOBSharedHandle<KARMPGeometry> geometry;
        coincidence.GetLinkedGeometry(static_cast<int>(i), geometry);
        kinds[i] = geometry->getClassInfo().getName();
    }
    constexpr std::string_view Point = "KARMPPoint2D";
    if (kinds[0] == kinds[1])
        return IsOneOf(kinds[0], Point, "KARMPLine2D", "KARMPCircle2D") ? std::optional(2)
                                                                        : std::nullopt;
    if (kinds[1] == Point)
        std::swap(kinds[0], kinds[1]);
    const bool slides =
        kinds[0] == Point && IsOneOf(kinds[1], "KARMPLine2D", "KARMPCircle2D", "KARMPCurve2D");
    return slides ? std::optional(1) : std::nullopt;
}

std::optional<int> RemovedBy(const KARMPConstraint& constraint)
{
    const std::string_view name = constraint.getClassInfo().getName();
    if (name == "KARMPCoincidence")
        return RemovedByCoincidence(constraint);
    const auto* const kind = std::find_if(
        Kinds.begin(), Kinds.end(), [name](const Kind& known) { return known.className == name; });
    return kind != Kinds.end() ? std::optional(kind->removed) : std::nullopt;
}

} // namespace

std::optional<int> FreedomsRemovedBy(const KARMPJoint2D& joint)
{
    if (joint.GetLinkedBodyCount() < 2 || joint.GetConstraintCount() == 0)
        return std::nullopt;
    std::optional<int> sum = 0;
    std::set<const KARMPVariable*> variables;
    for (int i = 0; i < joint.GetConstraintCount(); ++i) {
        QOBSharedHandle<KARMPConstraint> constraint;
        joint.GetConstraint(i, constraint);
        const std::optional<int> removed = RemovedBy(*constraint);
        sum = sum && removed ? std::optional(*sum + *removed) : std::nullopt;
        for (int j = 0; j < constraint->GetLinkedVariableCount(); ++j) {
            QOBSharedHandle<KARMPVariable> variable;
            constraint->GetLinkedVariable(j, variable);
            variables.insert(variable.get());
        }
    }
    if (sum || variables.empty())
        return sum;
    return std::max(PlanarFreedoms - static_cast<int>(variables.size()), 0);
}

} // namespace karmp::tool
