// What the bodies and joints of a mechanism are, in space or in a plane.
#pragma once

#include "KARMPEnumerations.h"
#include "KARMathPoint.h"
#include "KARMathTransformation.h"
#include "QOBSharedHandle.h"

#include <vector>

class KARMPBody;
class KARMPBody2D;
class KARMPConstraint;
class KARMPGeometry;
class KARMPJoint;
class KARMPShape;

namespace karmp::tool {

/// True when a body is fixed, a planar one in its plane.
bool IsFixed(const KARMPBody& body);
double MassOf(const KARMPBody& body);
/// The centre of gravity in the axes of the body, and in those of the world.
KARMathPoint CenterInBody(const KARMPBody& body);
KARMathPoint CenterOf(const KARMPBody& body);
/// From a body's axes to the world's. The axes of a planar body lie in its plane, the third along
/// the normal.
KARMathTransformation PositionOf(const KARMPBody& body);
/// Takes points (x, y, 0) of a planar body's plane to the world: along the two directions of its
/// sketch's plane, with the body that carries the sketch, and by the body's spatial position.
/// Without a sketch the plane is that of the world's first two axes.
KARMathTransformation PlaneOf(const KARMPBody2D& body);

struct LinkedBody
{
    const KARMPBody* body;
    KARMPBodyOrientation::Enum orientation;
};
/// The bodies that a joint links, planar ones for a planar joint.
std::vector<LinkedBody> LinkedBodiesOf(const KARMPJoint& joint);
/// The constraints of a joint, in their order.
std::vector<QOBSharedHandle<KARMPConstraint>> ConstraintsOf(const KARMPJoint& joint);
/// The bodies that have a shape.
std::vector<QOBSharedHandle<KARMPBody>> BodiesOf(const KARMPShape& shape);
/// The body that carries a geometry; null without one.
QOBSharedHandle<KARMPBody> CarrierOf(const KARMPGeometry& geometry);

} // namespace karmp::tool
