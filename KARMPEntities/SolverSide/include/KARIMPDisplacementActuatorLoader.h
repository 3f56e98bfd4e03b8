#pragma once

#include "KARIMPEntityLoader.h"
#include "KARMPEnumerations.h"

class KARMathLine;
class KARMathTransformation;

/// What a solver attaches to an actuator that moves a body: it applies the moves. The result of
/// each operation is the actuator's.
class KAR_API KARIMPDisplacementActuatorLoader : public KARIMPEntityLoader
{
public:
    /// Moves the body by a transformation.
    virtual KARStatus SetDisplacement(const KARMathTransformation& displacement) = 0;
    /// Drags the body along a line.
    virtual KARStatus SetDisplacementByDragLine(const KARMathLine& line) = 0;
    /// Tells what became of the last move.
    virtual KARStatus GetMoveStatus(KARMPMoveStatus::Enum& status) = 0;
};
