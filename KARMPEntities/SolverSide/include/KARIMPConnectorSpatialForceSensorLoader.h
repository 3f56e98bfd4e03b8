#pragma once

#include "KARIMPSensorLoader.h"
#include "KARMPEnumerations.h"

class KARMathAxis;

/// What a solver attaches to a sensor of the force and the torque in a connector; its update fills
/// both in.
class KAR_API KARIMPConnectorSpatialForceSensorLoader : public KARIMPSensorLoader
{
public:
    /// Reads the frame of the connector, in world coordinates. It is valid when the status is 0.
    virtual KARStatus ReadConnectorFrame(KARMathAxis& frame) = 0;
    /// Reads the frame that a mode names, whose directions have the length 1 and are at right
    /// angles. It is valid when the status is 0.
    virtual KARStatus ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame) = 0;
};
