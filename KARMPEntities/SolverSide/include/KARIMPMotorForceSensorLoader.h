#pragma once

#include "KARIMPSensorLoader.h"

/// What a solver attaches to a sensor of a motor's force; its update fills the force in.
class KAR_API KARIMPMotorForceSensorLoader : public KARIMPSensorLoader
{};
