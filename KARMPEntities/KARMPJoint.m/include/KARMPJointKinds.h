// The kinds of joint that differ by name only: class, factory entry and element say which joint is
// meant. How many bodies and constraints a joint has is its user's business.
//
// The screw, which differs in more, stands in KARMPScrew.h; the couplings stand in
// KARMPCouplingKinds.h.
#pragma once

#include "KARMPJoint.h"

/// Declares a kind. Its element is the class's name without "KARMP" and holds a joint's content;
/// KARMP_DEFINE_JOINT_KIND in KARMPJointKinds.cpp is the other half. A null argument and an element
/// that cannot be added or is not there are failed checks and failures.
#define KARMP_JOINT_KIND(Class)                                                                    \
    class KARMP_API Class : public KARMPJoint                                                      \
    {                                                                                              \
        KARMP_ENTITY(Class, KARMPJoint)                                                            \
                                                                                                   \
    public:                                                                                        \
        KARStatus Serialize(KARMPSerializer* serializer) const override;                           \
        KARStatus Deserialize(const KARMPDeserializer* deserializer,                               \
                              const KARMPEntityTable& entities) override;                          \
                                                                                                   \
    protected:                                                                                     \
        Class();                                                                                   \
        Class(const Class& source, CopyMode mode);                                                 \
        ~Class() override;                                                                         \
    }

/// Leaves a rotation about an axis.
KARMP_JOINT_KIND(KARMPRevolute);
/// Leaves a translation along an axis.
KARMP_JOINT_KIND(KARMPPrismatic);
/// Leaves a rotation about and a translation along one axis.
KARMP_JOINT_KIND(KARMPCylindrical);
/// Leaves all rotations about a point.
KARMP_JOINT_KIND(KARMPSpherical);
/// Leaves the motion in a plane.
KARMP_JOINT_KIND(KARMPPlanar);
/// Leaves two rotations, about axes that cross.
KARMP_JOINT_KIND(KARMPUniversal);
/// Leaves no motion.
KARMP_JOINT_KIND(KARMPRigid);
/// Keeps a point on a curve.
KARMP_JOINT_KIND(KARMPPointCurve);
/// Keeps a point on a surface.
KARMP_JOINT_KIND(KARMPPointSurface);
/// Lets a curve roll on another one.
KARMP_JOINT_KIND(KARMPRollCurve);
/// Lets a curve slide on another one.
KARMP_JOINT_KIND(KARMPSlideCurve);
/// Keeps two bodies symmetric about a plane.
KARMP_JOINT_KIND(KARMPSymmetric);
/// Is whatever its constraints make it.
KARMP_JOINT_KIND(KARMPUserDefined);

#undef KARMP_JOINT_KIND
