#pragma once

#include "KARIMPSensorLoader.h"

/// What a solver attaches to a sensor of one freedom of a joint; its update fills in position,
/// velocity and acceleration.
class KAR_API KARIMPJointDOFSensorLoader : public KARIMPSensorLoader
{};
