#pragma once

#include "KARIMPSensorLoader.h"

/// What a solver attaches to a sensor of collisions; its update adds the contacts that it found.
class KAR_API KARIMPCollisionSensorLoader : public KARIMPSensorLoader
{};
