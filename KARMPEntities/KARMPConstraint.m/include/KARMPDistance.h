#pragma once

#include "KARMPConstraint.h"

class KARIMPDistanceLoader;

/// A constraint on the distance between two geometries.
class KARMP_API KARMPDistance : public KARMPConstraint
{
    KARMP_ENTITY(KARMPDistance, KARMPConstraint)

public:
    /// Writes and reads "Distance" with both options after the base's content. A missing option is
    /// reported and fails, after the other one was read.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPDistanceLoader*& loader) const;

    /// Stores the alignment and tells the loader, whose answer is the result; 0 without one. A
    /// failing GetLoader is a failed check and a failure.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;
    /// Stores the side on which the distance is measured and tells the loader as
    /// SetAlignment does.
    KARStatus SetHalfSpace(KARMPHalfSpace::Enum halfSpace);
    /// Always 0.
    KARStatus GetHalfSpace(KARMPHalfSpace::Enum& halfSpace) const;

protected:
    KARMPDistance();
    KARMPDistance(const KARMPDistance& source, CopyMode mode);
    ~KARMPDistance() override;

private:
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
    KARMPHalfSpace::Enum m_halfSpace = KARMPHalfSpace::NotSpecified;
};
