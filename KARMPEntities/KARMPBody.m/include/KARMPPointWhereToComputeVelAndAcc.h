// The point of a body at which velocities and accelerations are wanted.
#pragma once

#include "KARPlatformExport.h"

namespace karmp {

/// A body only hands the value on to its loader.
enum PointWhereToComputeVelAndAcc : int {
    AtBodyOrigin = 0,      ///< The origin of the body's frame.
    AtCenterOfGravity = 1, ///< The body's centre of gravity.
    AtGivenPoint = 2       ///< The point that is passed along.
};

} // namespace karmp
