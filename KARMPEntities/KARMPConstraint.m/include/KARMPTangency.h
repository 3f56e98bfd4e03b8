#pragma once

#include "KARMPConstraint.h"

class KARIMPTangencyLoader;

/// A constraint by which two geometries touch.
class KARMP_API KARMPTangency : public KARMPConstraint
{
    KARMP_ENTITY(KARMPTangency, KARMPConstraint)

public:
    /// Writes and reads "Tangency" with both options after the base's content, the alignment first.
    /// A missing option is reported and fails, after the other one was read.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPTangencyLoader*& loader) const;

    /// Stores the side of the surface and tells the loader, whose answer is the result; 0 without
    /// one. A failing GetLoader is a failed check and a failure.
    KARStatus SetSurfaceOrientation(KARMPSurfaceOrientation::Enum orientation);
    /// Always 0.
    KARStatus GetSurfaceOrientation(KARMPSurfaceOrientation::Enum& orientation) const;
    /// Stores the alignment and tells the loader as SetSurfaceOrientation does.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

    /// Has the loader fill an array of the length that the solver expects; a failure without a
    /// loader. A failing GetLoader is a failed check and a failure.
    KARStatus GetSolverConstraintParameters(double* parameters) const;

protected:
    KARMPTangency();
    KARMPTangency(const KARMPTangency& source, CopyMode mode);
    ~KARMPTangency() override;

private:
    KARMPSurfaceOrientation::Enum m_orientation = KARMPSurfaceOrientation::NotSpecified;
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
};
