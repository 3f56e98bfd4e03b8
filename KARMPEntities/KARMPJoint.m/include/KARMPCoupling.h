#pragma once

#include "KARMPJoint.h"

class KARMPEquation;

/// Base of the joints that tie the motion of other joints together by an equation, as a gear does.
class KARMP_API KARMPCoupling : public KARMPJoint
{
    KARMP_ABSTRACT_ENTITY(KARMPCoupling, KARMPJoint)

public:
    /// Writes the equation and the joint's content into the kind's element.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the equation and the joint's content from the kind's element.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the equation, which is the joint's first constraint; a null handle and a failure
    /// when that is no equation or there is none.
    KARStatus GetEquation(QOBSharedHandle<KARMPEquation>& equation) const;
    /// Makes an equation the coupling's. An equation that is set once stays: 0, and nothing
    /// changes. In front of a first constraint of another kind the equation is inserted, and the
    /// result is a failure all the same. A null handle is a failed check and a failure unless an
    /// equation is set.
    KARStatus SetEquation(const QOBSharedHandle<KARMPEquation>& equation);

protected:
    KARMPCoupling();
    /// A copy has no equation.
    KARMPCoupling(const KARMPCoupling& source, CopyMode mode);
    ~KARMPCoupling() override;
};
