#include "MechanismParts.h"

#include "KARMPBody2D.h"
#include "KARMPConstraint.h"
#include "KARMPGeometry2D.h"
#include "KARMPJoint2D.h"
#include "KARMPShape2D.h"
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

template <class Body, class Shape>
std::vector<QOBSharedHandle<KARMPBody>> BodiesWith(const Shape& shape)
{
    std::vector<QOBSharedHandle<KARMPBody>> bodies;
    for (int index = 0; index < shape.GetLinkedBodyCount(); ++index) {
        QOBSharedHandle<Body> body;
        if (shape.GetLinkedBody(index, body) == KARSuccess && body)
            bodies.push_back(body);
    }
    return bodies;
}

template <class Joint>
std::vector<QOBSharedHandle<KARMPConstraint>> ConstraintsIn(const Joint& joint)
{
    std::vector<QOBSharedHandle<KARMPConstraint>> constraints;
    for (int index = 0; index < joint.GetConstraintCount(); ++index) {
        QOBSharedHandle<KARMPConstraint> constraint;
        if (joint.GetConstraint(index, constraint) == KARSuccess && constraint)
            constraints.push_back(constraint);
    }
    return constraints;
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

KARMathPoint CenterInBody(const KARMPBody& body)
{
    KARMathPoint center;
    if (const KARMPBody2D* const planar = AsPlanar(body)) {
        KARMathPoint2D inPlane;
        planar->GetCenterOfGravity(inPlane);
        center = {inPlane.GetX(), inPlane.GetY(), 0.0};
    } else {
        body.GetCenterOfGravity(center);
    }
    return center;
}

KARMathPoint CenterOf(const KARMPBody& body)
{
    return PositionOf(body) * CenterInBody(body);
}

KARMathTransformation PositionOf(const KARMPBody& body)
{
    if (const KARMPBody2D* const planar = AsPlanar(body)) {
        KARMathTransformation2D position;
        double c[6];
        planar->GetPosition(position);
        position.GetCoef(c);
        const KARMath3x3Matrix turn({c[0], c[1], 0.0}, {c[2], c[3], 0.0}, {0.0, 0.0, 1.0});
        return PlaneOf(*planar) * KARMathTransformation(turn, {c[4], c[5], 0.0});
    }
    KARMathTransformation position;
    body.GetPosition(position);
    return position;
}

KARMathTransformation PlaneOf(const KARMPBody2D& body)
{
    KARMathTransformation inSpace;
    QOBSharedHandle<KARMPSketch> sketch;
    body.Get3DPosition(inSpace);
    if (KARFailed(body.GetSketch(sketch)))
        return inSpace;
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
    return inSpace * position * inCarrier;
}

std::vector<LinkedBody> LinkedBodiesOf(const KARMPJoint& joint)
{
    const auto* const planar = dynamic_cast<const KARMPJoint2D*>(&joint);
    return planar != nullptr ? BodiesIn<KARMPBody2D>(*planar) : BodiesIn<KARMPBody>(joint);
}

std::vector<QOBSharedHandle<KARMPConstraint>> ConstraintsOf(const KARMPJoint& joint)
{
    const auto* const planar = dynamic_cast<const KARMPJoint2D*>(&joint);
    return planar != nullptr ? ConstraintsIn(*planar) : ConstraintsIn(joint);
}

std::vector<QOBSharedHandle<KARMPBody>> BodiesOf(const KARMPShape& shape)
{
    const auto* const planar = dynamic_cast<const KARMPShape2D*>(&shape);
    return planar != nullptr ? BodiesWith<KARMPBody2D>(*planar) : BodiesWith<KARMPBody>(shape);
}

QOBSharedHandle<KARMPBody> CarrierOf(const KARMPGeometry& geometry)
{
    if (const auto* const planar = dynamic_cast<const KARMPGeometry2D*>(&geometry)) {
        QOBSharedHandle<KARMPBody2D> body;
        planar->GetBody(body);
        return body;
    }
    QOBSharedHandle<KARMPBody> body;
    geometry.GetBody(body);
    return body;
}

} // namespace karmp::tool
