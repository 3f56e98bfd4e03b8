#pragma once

#include "KARIMPEntityLoader.h"

/// The options and the orientation that a solver works with for a constraint. Its content belongs
/// to the solver; here a reference to it is passed through.
struct KARMPOptionsOrientation;

/// What a solver attaches to a constraint, to be asked whether the constraint holds.
class KAR_API KARIMPConstraintLoader : public KARIMPEntityLoader
{
public:
    /// True when the constraint holds; gives by how much it is missed, as the solver measures.
    virtual bool IsSatisfied(double& residual) = 0;
    /// True when the constraint holds within the solver's tolerance.
    virtual bool IsSatisfied() = 0;
    /// Gives the current value and its rate for one of the constraint's variables.
    virtual KARStatus CurrentValue(int index, double& value, double& rate) = 0;
    /// Gives the current value of the constraint.
    virtual KARStatus CurrentValue(double& value) = 0;
    /// Brings the constraint's parameters up to date with the solver's state. A world asks for it,
    /// the constraint itself never does.
    virtual KARStatus UpdateParameters() = 0;
    /// Gives the options and the orientation that the solver works with now.
    virtual KARStatus CurrentOptions(KARMPOptionsOrientation& options) = 0;
};
