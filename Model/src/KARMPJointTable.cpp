#include "KARMPJointTable.h"

#include "KARMPCoincidence.h"
#include "KARMPCylindricalConstraint.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPrismaticConstraint.h"
#include "KARMPRevoluteConstraint.h"
#include "KARMPRollCurveConstraint.h"
#include "KARMPScrew.h"
#include "KARMPScrewConstraint.h"
#include "KARMPSphericalConstraint.h"
#include "KARMPSymmetry.h"
#include "KARMPTangency.h"
#include "KARMPUserDefined2D.h"

#include <array>

namespace karmp::model {

namespace {

template <class Joint, class Constraint>
constexpr JointKind Kind(Mount parent, Mount child, std::string_view freedoms)
{
    return {&Joint::ClassInfo, &Constraint::ClassInfo, parent, child, freedoms};
}

using enum Mount;

constexpr std::array Kinds{
    Kind<KARMPRevolute, KARMPRevoluteConstraint>(Frame, Frame, "A"),
    Kind<KARMPPrismatic, KARMPPrismaticConstraint>(Frame, Frame, "L"),
    Kind<KARMPCylindrical, KARMPCylindricalConstraint>(Frame, Frame, "LA"),
    Kind<KARMPSpherical, KARMPSphericalConstraint>(Frame, Frame, "AAA"),
    Kind<KARMPPlanar, KARMPPlanarConstraint>(Frame, Frame, "LLA"),
    Kind<KARMPUniversal, KARMPUniversalConstraint>(Frame, Frame, "AA"),
    Kind<KARMPScrew, KARMPScrewConstraint>(Frame, Frame, "LA"),
    Kind<KARMPRigid, KARMP0DoF>(Frame, Frame, ""),
    Kind<KARMPUserDefined, KARMP6DoF>(Frame, Frame, ""),
    Kind<KARMPPointCurve, KARMPCoincidence>(Line, Point, "L"),
    Kind<KARMPPointSurface, KARMPCoincidence>(Plane, Point, "LL"),
    Kind<KARMPRollCurve, KARMPRollCurveConstraint>(Given, Given, "L"),
    Kind<KARMPSlideCurve, KARMPTangency>(Given, Given, "LL"),
    Kind<KARMPSymmetric, KARMPSymmetry>(Frame, Frame, ""),
    Kind<KARMPUserDefined2D, KARMPCoincidence>(Point2D, Point2D, "A"),
};

} // namespace

std::span<const JointKind> JointKinds()
{
    return Kinds;
}

const JointKind* FindJointKind(const QOBClassInfo& joint)
{
    for (const JointKind& kind : Kinds)
        if (&kind.joint() == &joint)
            return &kind;
    return nullptr;
}

QOBSharedHandle<KARMPConstraint> FirstConstraintOf(const KARMPJoint& joint)
{
    QOBSharedHandle<KARMPConstraint> constraint;
    if (const auto* const planar = dynamic_cast<const KARMPJoint2D*>(&joint))
        planar->GetConstraint(0, constraint);
    else
        joint.GetConstraint(0, constraint);
    return constraint;
}

} // namespace karmp::model
