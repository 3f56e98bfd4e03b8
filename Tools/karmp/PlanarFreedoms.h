// What a planar joint leaves of the motion of its bodies.
#pragma once

#include <optional>

class KARMPJoint2D;

namespace karmp::tool {

/// Degrees of freedom of a body in a plane.
inline constexpr int PlanarFreedoms = 3;

/// The degrees of freedom that a planar joint removes, by what its constraints are between. Where
/// that does not fix them, the joint leaves as many as its constraints have variables. Nothing for
/// a joint without two bodies, and where neither tells.
std::optional<int> FreedomsRemovedBy(const KARMPJoint2D& joint);

} // namespace karmp::tool
