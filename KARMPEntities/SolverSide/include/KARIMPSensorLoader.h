#pragma once

#include "KARIMPEntityLoader.h"

/// What a solver attaches to a sensor, to measure for it.
class KAR_API KARIMPSensorLoader : public KARIMPEntityLoader
{
public:
    /// Measures and fills the result into the sensor by the sensor's setters. A negative status
    /// makes the sensor's update fail; any other one is a success.
    KARStatus Update() override = 0;
};
