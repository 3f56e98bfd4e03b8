#pragma once

#include "KARIMPDisplacementActuatorLoader.h"

class KARMathLine2D;
class KARMathTransformation2D;

/// What a solver attaches to an actuator that moves a body in a plane: it applies the moves. The
/// result of each operation is the actuator's.
class KAR_API KARIMPDisplacementActuator2DLoader : public KARIMPDisplacementActuatorLoader
{
public:
    /// Moves the body by a transformation of the plane.
    virtual KARStatus SetDisplacement(const KARMathTransformation2D& displacement) = 0;
    /// Drags the body along a line.
    virtual KARStatus SetDisplacementByDragLine(const KARMathLine2D& line) = 0;

    /// A body in a plane is not moved in space: KARNotImplemented, as for the drag line.
    KARStatus SetDisplacement(const KARMathTransformation&) override { return KARNotImplemented; }
    KARStatus SetDisplacementByDragLine(const KARMathLine&) override { return KARNotImplemented; }
};
