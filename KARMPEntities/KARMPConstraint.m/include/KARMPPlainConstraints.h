// The constraints that have no content of their own: what they are and what they link to says it
// all.
#pragma once

#include "KARMPKinematicConstraint.h"

/// Declares such a constraint. Its Serialize and Deserialize handle its class element with nothing
/// but the base's content.
#define KARMP_PLAIN_CONSTRAINT(Class, Parent, ...)                                                 \
    class KARMP_API Class : public Parent                                                          \
    {                                                                                              \
        KARMP_ENTITY(Class, Parent)                                                                \
                                                                                                   \
    public:                                                                                        \
        KARStatus Serialize(KARMPSerializer* serializer) const override;                           \
        KARStatus Deserialize(const KARMPDeserializer* deserializer,                               \
                              const KARMPEntityTable& entities) override;                          \
        __VA_ARGS__                                                                                \
                                                                                                   \
    protected:                                                                                     \
        Class();                                                                                   \
        Class(const Class& source, CopyMode mode);                                                 \
        ~Class() override;                                                                         \
    }

/// The same for one that stands for a joint.
#define KARMP_PLAIN_KINEMATIC_CONSTRAINT(Class)                                                    \
    KARMP_PLAIN_CONSTRAINT(Class, KARMPKinematicConstraint,                                        \
                           std::wstring_view getClassSerializeID_() const override;)

/// Two circles, spheres or points have one centre.
KARMP_PLAIN_CONSTRAINT(KARMPConcentricity, KARMPConstraint);
/// Nothing moves against one another: no degree of freedom.
KARMP_PLAIN_CONSTRAINT(KARMP0DoF, KARMPConstraint);
/// Nothing is held: all six degrees of freedom.
KARMP_PLAIN_CONSTRAINT(KARMP6DoF, KARMPConstraint);

/// A sliding of two planes on one another. It has no friction parameters.
KARMP_PLAIN_KINEMATIC_CONSTRAINT(KARMPPlanarConstraint);
/// A turning about two axes at a right angle. It has no friction parameters.
KARMP_PLAIN_KINEMATIC_CONSTRAINT(KARMPUniversalConstraint);

#undef KARMP_PLAIN_KINEMATIC_CONSTRAINT
#undef KARMP_PLAIN_CONSTRAINT
