#pragma once

#include "KARIMPSensorLoader.h"

/// What a solver attaches to a proximity sensor; its update sets the sensor's status.
class KAR_API KARIMPProximitySensorLoader : public KARIMPSensorLoader
{};
