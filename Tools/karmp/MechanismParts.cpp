#include "MechanismParts.h"

#include "KARMPBody2D.h"
#include "KARMPJoint2D.h"
#include "KARMPSketch.h"

namespace karmp::tool {

namespace {

const KARMPBody2D* AsPlanar(const KARMPBody& body)
{
    return dynamic_cast<const KARMPBody2D*>(&body);
}

template <class Body, class Joint>
std::vector<LinkedBody> BodiesIn(const Joint& joint)
{
    std::vector<LinkedBody> bodies;
    for (int index = 0; index < joint.GetLinkedBodyCount(); ++index) {
        QOBSharedHandle<Body> body;
        KARMPBodyOrientation::Enum orientation{};
        if (joint.GetLinkedBody(index, body, orientation) == KARSuccess && body)
            bodies.push_back({body.get(), orientation});
    }
    return bodies;
}

} // namespace

bool IsFixed(const KARMPBody& body)
{
    const KARMPBody2D* const planar = AsPlanar(body);
    return planar != nullptr ? planar->IsFixed2D() : body.IsFixed();
}

double MassOf(const KARMPBody& body)
{
    double mass = 0.0;
    if (const KARMPBody2D* const planar = AsPlanar(body))
        planar->GetMass(mass);
    else
        body.GetMass(mass);
    return mass;
}

KARMathPoint CenterOf(const KARMPBody& body)
{
    if (const KARMPBody2D* const planar = AsPlanar(body)) {
        KARMathPoint2D center;
        KARMathTransformation2D position;
        planar->GetCenterOfGravity(center);
        planar->GetPosition(position);
        const KARMathPoint2D placed = position * center;
        return PlaneOf(*planar) * KARMathPoint(placed.GetX(), placed.GetY(), 0.0);
    }
    KARMathPoint center;
    KARMathTransformation position;
    body.GetCenterOfGravity(center);
    body.GetPosition(position);
    return position * center;
}

KARMathTransformation PlaneOf(const KARMPBody2D& body)
{
    QOBSharedHandle<KARMPSketch> sketch;
    if (KARFailed(body.GetSketch(sketch)))
        return {};
    KARMathPlane plane;
    sketch->GetPlane(plane);
    KARMathVector first;
    KARMathVector second;
    plane.GetDirections(first, second);
    const KARMathTransformation inCarrier(
        KARMathAxis(plane.GetOrigin(), first, second, first.Cross(second)));
    QOBSharedHandle<KARMPBody> carrier;
    KARMathTransformation position;
    if (sketch->GetBody(carrier) == KARSuccess)
        carrier->GetPosition(position);
    return position * inCarrier;
}

std::vector<LinkedBody> LinkedBodiesOf(const KARMPJoint& joint)
{
    const auto* const planar = dynamic_cast<const KARMPJoint2D*>(&joint);
    return planar != nullptr ? BodiesIn<KARMPBody2D>(*planar) : BodiesIn<KARMPBody>(joint);
}

} // namespace karmp::tool
