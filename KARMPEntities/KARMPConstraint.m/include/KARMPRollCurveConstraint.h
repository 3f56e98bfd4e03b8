#pragma once

#include "KARMPConstraint.h"

class KARIMPRollCurveConstraintLoader;

/// A constraint by which two curves roll on one another.
class KARMP_API KARMPRollCurveConstraint : public KARMPConstraint
{
    KARMP_ENTITY(KARMPRollCurveConstraint, KARMPConstraint)

public:
    /// Writes and reads "RollCurveConstraint" with the option after the base's content. A missing
    /// option is reported and fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPRollCurveConstraintLoader*& loader) const;

    /// Stores the alignment and tells the loader, whose answer is the result; 0 without one. A
    /// failing GetLoader is a failed check and a failure.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

protected:
    KARMPRollCurveConstraint();
    KARMPRollCurveConstraint(const KARMPRollCurveConstraint& source, CopyMode mode);
    ~KARMPRollCurveConstraint() override;

private:
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
};
