// The constraints that have no content of their own: what they are and what they link to says it
// all. Each writes and reads its class element with the base's content.
#pragma once

#include "KARMPKinematicConstraint.h"

/// Two circles, spheres or points have one centre.
class KARMP_API KARMPConcentricity : public KARMPConstraint
{
    KARMP_ENTITY(KARMPConcentricity, KARMPConstraint)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPConcentricity();
    KARMPConcentricity(const KARMPConcentricity& source, CopyMode mode);
    ~KARMPConcentricity() override;
};

/// Nothing moves against one another: no degree of freedom.
class KARMP_API KARMP0DoF : public KARMPConstraint
{
    KARMP_ENTITY(KARMP0DoF, KARMPConstraint)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMP0DoF();
    KARMP0DoF(const KARMP0DoF& source, CopyMode mode);
    ~KARMP0DoF() override;
};

/// Nothing is held: all six degrees of freedom.
class KARMP_API KARMP6DoF : public KARMPConstraint
{
    KARMP_ENTITY(KARMP6DoF, KARMPConstraint)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMP6DoF();
    KARMP6DoF(const KARMP6DoF& source, CopyMode mode);
    ~KARMP6DoF() override;
};

/// A sliding of two planes on one another. It has no friction parameters.
class KARMP_API KARMPPlanarConstraint : public KARMPKinematicConstraint
{
    KARMP_ENTITY(KARMPPlanarConstraint, KARMPKinematicConstraint)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    std::wstring_view getClassSerializeID_() const override;

protected:
    KARMPPlanarConstraint();
    KARMPPlanarConstraint(const KARMPPlanarConstraint& source, CopyMode mode);
    ~KARMPPlanarConstraint() override;
};

/// A turning about two axes at a right angle. It has no friction parameters.
class KARMP_API KARMPUniversalConstraint : public KARMPKinematicConstraint
{
    KARMP_ENTITY(KARMPUniversalConstraint, KARMPKinematicConstraint)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    std::wstring_view getClassSerializeID_() const override;

protected:
    KARMPUniversalConstraint();
    KARMPUniversalConstraint(const KARMPUniversalConstraint& source, CopyMode mode);
    ~KARMPUniversalConstraint() override;
};
