#pragma once

#include "KARMPCoupling.h"

/// Couples a rotation about an axis with the translation along it, so that one of them is left.
///
/// It is a coupling in its making and a joint in its record: a cast to KARMPCoupling succeeds,
/// while isDerivedFrom says no to that class.
class KARMP_API KARMPScrew : public KARMPCoupling
{
    KARMP_ENTITY(KARMPScrew, KARMPCoupling)

public:
    /// Writes "Screw" with a joint's content; the equation stands among the constraints only. A
    /// null serializer and an element that cannot be added are failed checks and failures.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads "Screw" with a coupling's content, so that an "Equation" is taken where one stands. A
    /// null deserializer and a missing element are failed checks and failures.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    KARMPScrew();
    KARMPScrew(const KARMPScrew& source, CopyMode mode);
    ~KARMPScrew() override;
};
