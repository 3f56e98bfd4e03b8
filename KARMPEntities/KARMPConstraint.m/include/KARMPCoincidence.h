#pragma once

#include "KARMPConstraint.h"

class KARIMPCoincidenceLoader;

/// A constraint by which two geometries lie in one another.
class KARMP_API KARMPCoincidence : public KARMPConstraint
{
    KARMP_ENTITY(KARMPCoincidence, KARMPConstraint)

public:
    /// Writes and reads "Coincidence" with both options after the base's content. A missing option
    /// is reported and fails, after the other one was read.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPCoincidenceLoader*& loader) const;

    /// Stores the alignment and tells the loader, whose answer is the result; 0 without one. A
    /// failing GetLoader is a failed check and a failure.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;
    /// Stores how a circle lies to the torus that it coincides with; always 0. The loader is not
    /// told.
    KARStatus SetCircleTorusOrientation(KARMPCircleTorusOrientation::Enum orientation);
    /// Always 0.
    KARStatus GetCircleTorusOrientation(KARMPCircleTorusOrientation::Enum& orientation) const;

    /// Has the loader fill an array of the length that the solver expects; a failure without a
    /// loader. A failing GetLoader is a failed check and a failure.
    KARStatus GetSolverConstraintParameters(double* parameters) const;

protected:
    KARMPCoincidence();
    KARMPCoincidence(const KARMPCoincidence& source, CopyMode mode);
    ~KARMPCoincidence() override;

private:
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
    KARMPCircleTorusOrientation::Enum m_orientation = KARMPCircleTorusOrientation::NotSpecified;
};
