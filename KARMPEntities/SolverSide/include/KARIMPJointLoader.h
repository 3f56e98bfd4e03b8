#pragma once

#include "KARIMPEntityLoader.h"
#include "KARMPEnumerations.h"

#include <vector>

class KARMathAxis;

/// What a solver attaches to a joint: it knows the joint's frames and what the joint is to the
/// solver.
class KAR_API KARIMPJointLoader : public KARIMPEntityLoader
{
public:
    /// Reads the joint's frames, one for each linked body, in world coordinates. They are valid
    /// when the status is 0.
    virtual KARStatus ReadFrames(std::vector<KARMathAxis>& frames) = 0;
    /// Reads the kind of joint that the solver treats the joint as.
    virtual KARStatus ReadSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type) = 0;
    /// Reads the kind of joint by the solver's second reading of it.
    virtual KARStatus ReadSolverEquivalentJointType2(
        KARMPSolverEquivalentJointType::Enum& type) = 0;
};
