// The constraints that have no content of their own: what they are and what they link to says it
// all.
#pragma once

#include "KARMPKinematicConstraint.h"

/// Two circles, spheres or points have one centre.
class KARMP_API KARMPConcentricity : public KARMPConstraint
{
    KARMP_KIND(KARMPConcentricity, KARMPConstraint)
};

/// Nothing moves against one another: no degree of freedom.
class KARMP_API KARMP0DoF : public KARMPConstraint
{
    KARMP_KIND(KARMP0DoF, KARMPConstraint)
};

/// Nothing is held: all six degrees of freedom.
class KARMP_API KARMP6DoF : public KARMPConstraint
{
    KARMP_KIND(KARMP6DoF, KARMPConstraint)
};

/// A sliding of two planes on one another. It has no friction parameters.
class KARMP_API KARMPPlanarConstraint : public KARMPKinematicConstraint
{
    KARMP_KIND(KARMPPlanarConstraint, KARMPKinematicConstraint)

public:
    std::wstring_view getClassSerializeID_() const override;
};

/// A turning about two axes at a right angle. It has no friction parameters.
class KARMP_API KARMPUniversalConstraint : public KARMPKinematicConstraint
{
    KARMP_KIND(KARMPUniversalConstraint, KARMPKinematicConstraint)

public:
    std::wstring_view getClassSerializeID_() const override;
};
