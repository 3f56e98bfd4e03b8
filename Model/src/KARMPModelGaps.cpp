// How near geometries of a model come.
#include "KARMPAxisSystem.h"
#include "KARMPBody2D.h"
#include "KARMPCircle2D.h"
#include "KARMPConstraint.h"
#include "KARMPJoint.h"
#include "KARMPJointTable.h"
#include "KARMPLine2D.h"
#include "KARMPModel.h"
#include "KARMPModelReading.h"
#include "KARMPPlane.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "KARMPSphere.h"
#include "KARMathDirection.h"
#include "KARMathLine2D.h"
#include "KARMathPlane.h"

#include <algorithm>

namespace karmp::model {

namespace {

/// A point or a ball, or what is flat, in the world.
struct GapSide
{
    KARMathPoint at = {};
    double radius = 0.0;
    /// Zero for what is round.
    KARMathVector normal = {};
    bool isPlanar = false;

    bool IsFlat() const { return normal.SquareNorm() > 0.0; }
};

template <class G>
QOBSharedHandle<KARMPBody2D> BodyOf(const G& geometry)
{
    QOBSharedHandle<KARMPBody2D> body;
    geometry.GetBody(body);
    return body;
}

std::optional<GapSide> PlanarSideOf(const KARMPGeometry2D& geometry)
{
    const auto body = BodyOf(geometry);
    const KARMathTransformation2D position =
        body ? PositionOf(Ref(body)) : KARMathTransformation2D();
    KARMathPoint2D at;
    if (const auto* const point = dynamic_cast<const KARMPPoint2D*>(&geometry)) {
        point->GetPoint(at);
        return GapSide{.at = InSpace(position * at), .isPlanar = true};
    }
    if (const auto* const circle = dynamic_cast<const KARMPCircle2D*>(&geometry)) {
        double radius = 0.0;
        circle->GetPoint(at);
        circle->GetRadius(radius);
        return GapSide{.at = InSpace(position * at), .radius = radius, .isPlanar = true};
    }
    if (const auto* const line = dynamic_cast<const KARMPLine2D*>(&geometry)) {
        KARMathLine2D own;
        line->GetLine(own);
        const KARMathVector2D along = position.GetMatrix() * KARMathVector2D(own.GetDirection());
        KARMathVector across(-along.GetY(), along.GetX(), 0.0);
        across.Normalize();
        return GapSide{
            .at = InSpace(position * own.GetOrigin()), .normal = across, .isPlanar = true};
    }
    return {};
}

std::optional<GapSide> SideOf(const Ref<KARMPGeometry>& geometry)
{
    if (const auto* const planar = dynamic_cast<const KARMPGeometry2D*>(&*geometry))
        return PlanarSideOf(*planar);
    QOBSharedHandle<KARMPBody> body;
    geometry->GetBody(body);
    const KARMathTransformation position = body ? PositionOf(Ref(body)) : KARMathTransformation();
    if (const auto* const sphere = dynamic_cast<const KARMPSphere*>(&*geometry)) {
        GapSide side;
        sphere->GetCenter(side.at);
        sphere->GetRadius(side.radius);
        side.at = position * side.at;
        return side;
    }
    if (const auto* const plane = dynamic_cast<const KARMPPlane*>(&*geometry)) {
        KARMathPlane own;
        plane->GetPlane(own);
        return GapSide{.at = position * own.GetOrigin(),
                       .normal = position * KARMathVector(own.GetNormal())};
    }
    if (geometry.As<KARMPPoint>() || geometry.As<KARMPAxisSystem>())
        return GapSide{.at = PlaceOf(geometry)};
    return {};
}

std::optional<Gap> GapBetweenRound(const GapSide& first, const GapSide& second)
{
    KARMathVector normal = first.at - second.at;
    const double distance = normal.Norm();
    if (!normal.Normalize())
        return {};
    return Gap{distance - first.radius - second.radius, normal, first.at - first.radius * normal,
               second.at + second.radius * normal};
}

Gap GapToFlat(const GapSide& round, const GapSide& flat)
{
    double height = (round.at - flat.at).Dot(flat.normal);
    const bool isBelow = round.isPlanar && height < 0.0;
    const KARMathVector normal = isBelow ? -flat.normal : flat.normal;
    height = isBelow ? -height : height;
    return {height - round.radius, normal, round.at - round.radius * normal,
            round.at - height * normal};
}

} // namespace

double LoopGap(const Model& model)
{
    double greatest = 0.0;
    for (const auto& joint : model.All<KARMPJoint>()) {
        const JointKind* const kind = FindJointKind(joint->getClassInfo());
        const auto constraint = FirstConstraintOf(*joint);
        if (kind == nullptr || !constraint || kind->freedoms.empty() ||
            kind->freedoms.find('L') != std::string_view::npos)
            continue;
        QOBSharedHandle<KARMPGeometry> first;
        QOBSharedHandle<KARMPGeometry> second;
        constraint->GetLinkedGeometry(0, first);
        constraint->GetLinkedGeometry(1, second);
        const auto onFirst = first ? SideOf(Ref(first)) : std::nullopt;
        const auto onSecond = second ? SideOf(Ref(second)) : std::nullopt;
        if (onFirst && onSecond && !onFirst->IsFlat() && !onSecond->IsFlat() &&
            onFirst->radius + onSecond->radius == 0.0)
            greatest = std::max(greatest, (onFirst->at - onSecond->at).Norm());
    }
    return greatest;
}

std::optional<Gap> GapBetween(const Ref<KARMPGeometry>& first, const Ref<KARMPGeometry>& second)
{
    const auto left = SideOf(first);
    const auto right = SideOf(second);
    if (!left || !right || left->isPlanar != right->isPlanar || (left->IsFlat() && right->IsFlat()))
        return {};
    if (right->IsFlat())
        return GapToFlat(*left, *right);
    if (!left->IsFlat())
        return GapBetweenRound(*left, *right);
    const Gap gap = GapToFlat(*right, *left);
    return Gap{gap.distance, -gap.normal, gap.onSecond, gap.onFirst};
}

} // namespace karmp::model
