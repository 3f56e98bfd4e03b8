#pragma once

#include "KARIMPEntityLoader.h"

/// What a solver attaches to a variable, to be told of its value and bounds.
class KAR_API KARIMPVariableLoader : public KARIMPEntityLoader
{
public:
    /// Brings the solver's unknown up to date with the variable as a whole; the library does not
    /// call it.
    virtual KARStatus UpdateVariable() { return KARSuccess; }
    /// Takes a new value, in the unit of the variable's quantity; the result is the setter's, as
    /// with the bounds.
    virtual KARStatus SetValue(double value) = 0;
    /// Takes a new lower bound.
    virtual KARStatus SetMinValue(double value) = 0;
    /// Takes a new upper bound.
    virtual KARStatus SetMaxValue(double value) = 0;
    /// Keeps the unknown at its value from now on; the result is Fix's.
    virtual KARStatus Fix() = 0;
    /// Lets the unknown vary again; the result is Unfix's.
    virtual KARStatus Unfix() = 0;
};
