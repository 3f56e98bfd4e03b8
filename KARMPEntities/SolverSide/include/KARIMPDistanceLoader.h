#pragma once

#include "KARIMPConstraintLoader.h"

/// What a solver attaches to a distance, to be told of its options.
class KAR_API KARIMPDistanceLoader : public KARIMPConstraintLoader
{
public:
    /// Brings the solver's relation up to date as a whole; the library does not call it.
    virtual KARStatus UpdateRelation() { return KARSuccess; }
    /// Takes the alignment, a value of KARMPAlignment; the result is the setter's.
    virtual KARStatus SetAlignment(int alignment) = 0;
    /// Takes the half space, a value of KARMPHalfSpace; the result is the setter's.
    virtual KARStatus SetHalfSpace(int halfSpace) = 0;
};
