#pragma once

#include "KARMPActuator.h"
#include "KARMathTransformation.h"

/// Moves the whole model by a transformation, which it keeps for a solver to read.
class KARMP_API KARMPGlobalDisplacementActuator : public KARMPActuator
{
    KARMP_ENTITY(KARMPGlobalDisplacementActuator, KARMPActuator)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Store and give the transformation, in world axes; always 0.
    KARStatus SetGlobalDisplacement(const KARMathTransformation& displacement);
    KARStatus GetGlobalDisplacement(KARMathTransformation& displacement) const;

protected:
    KARMPGlobalDisplacementActuator();
    /// A copy has the displacement.
    KARMPGlobalDisplacementActuator(const KARMPGlobalDisplacementActuator& source, CopyMode mode);
    ~KARMPGlobalDisplacementActuator() override;

private:
    KARMathTransformation m_displacement;
};
