#pragma once

#include "KARIMPConstraintLoader.h"

/// What a solver attaches to a coincidence, to be told of its options.
class KAR_API KARIMPCoincidenceLoader : public KARIMPConstraintLoader
{
public:
    /// Brings the solver's relation up to date as a whole; the library does not call it.
    virtual KARStatus UpdateRelation() { return KARSuccess; }
    /// Takes the alignment, a value of KARMPAlignment; the result is the setter's.
    virtual KARStatus SetAlignment(int alignment) = 0;
    /// Fills an array with the solver's own parameters of the relation. How many there are is
    /// agreed between the solver and the caller.
    virtual KARStatus GetSolverConstraintParameters(double* parameters) = 0;
};
