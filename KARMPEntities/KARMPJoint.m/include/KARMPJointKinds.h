// The kinds of joint that differ by name only: class, factory entry and element say which joint is
// meant. How many bodies and constraints a joint has is its user's business.
//
// Each writes and reads an element of its own around a joint's content and passes the joint's
// status on. A null argument, and an element that cannot be added or is not there, are failed
// checks and failures. The screw stands in KARMPScrew.h, the couplings in KARMPCouplingKinds.h.
#pragma once

#include "KARMPJoint.h"

/// Leaves a rotation about an axis.
class KARMP_API KARMPRevolute : public KARMPJoint
{
    KARMP_KIND(KARMPRevolute, KARMPJoint)
};

/// Leaves a translation along an axis.
class KARMP_API KARMPPrismatic : public KARMPJoint
{
    KARMP_KIND(KARMPPrismatic, KARMPJoint)
};

/// Leaves a rotation about an axis and a translation along it.
class KARMP_API KARMPCylindrical : public KARMPJoint
{
    KARMP_KIND(KARMPCylindrical, KARMPJoint)
};

/// Leaves all rotations about a point.
class KARMP_API KARMPSpherical : public KARMPJoint
{
    KARMP_KIND(KARMPSpherical, KARMPJoint)
};

/// Leaves the motion in a plane: two translations and the rotation about its normal.
class KARMP_API KARMPPlanar : public KARMPJoint
{
    KARMP_KIND(KARMPPlanar, KARMPJoint)
};

/// Leaves two rotations, about axes that cross.
class KARMP_API KARMPUniversal : public KARMPJoint
{
    KARMP_KIND(KARMPUniversal, KARMPJoint)
};

/// Leaves no motion.
class KARMP_API KARMPRigid : public KARMPJoint
{
    KARMP_KIND(KARMPRigid, KARMPJoint)
};

/// Keeps a point on a curve and leaves all rotations.
class KARMP_API KARMPPointCurve : public KARMPJoint
{
    KARMP_KIND(KARMPPointCurve, KARMPJoint)
};

/// Keeps a point on a surface and leaves all rotations.
class KARMP_API KARMPPointSurface : public KARMPJoint
{
    KARMP_KIND(KARMPPointSurface, KARMPJoint)
};

/// Lets a curve roll on another one without sliding.
class KARMP_API KARMPRollCurve : public KARMPJoint
{
    KARMP_KIND(KARMPRollCurve, KARMPJoint)
};

/// Lets a curve slide on another one.
class KARMP_API KARMPSlideCurve : public KARMPJoint
{
    KARMP_KIND(KARMPSlideCurve, KARMPJoint)
};

/// Keeps two bodies symmetric about a plane: one follows the motion of the other.
class KARMP_API KARMPSymmetric : public KARMPJoint
{
    KARMP_KIND(KARMPSymmetric, KARMPJoint)
};

/// Leaves whatever motion its constraints leave.
class KARMP_API KARMPUserDefined : public KARMPJoint
{
    KARMP_KIND(KARMPUserDefined, KARMPJoint)
};
