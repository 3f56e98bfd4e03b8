// What the bodies and joints of a mechanism are, in space or in a plane.
#pragma once

#include "KARMPEnumerations.h"
#include "KARMathPoint.h"
#include "KARMathTransformation.h"

#include <vector>

class KARMPBody;
class KARMPBody2D;
class KARMPJoint;

namespace karmp::tool {

/// True when a body is fixed, a planar one in its plane.
bool IsFixed(const KARMPBody& body);
double MassOf(const KARMPBody& body);
/// The centre of gravity in the axes of the world.
KARMathPoint CenterOf(const KARMPBody& body);
/// Takes points (x, y, 0) of a planar body's plane to the world: along the two directions of its
/// sketch's plane, and with the body that carries the sketch. Without a sketch the plane is that of
/// the world's first two axes.
KARMathTransformation PlaneOf(const KARMPBody2D& body);

struct LinkedBody
{
    const KARMPBody* body;
    KARMPBodyOrientation::Enum orientation;
};
/// The bodies that a joint links, planar ones for a planar joint.
std::vector<LinkedBody> LinkedBodiesOf(const KARMPJoint& joint);

} // namespace karmp::tool
