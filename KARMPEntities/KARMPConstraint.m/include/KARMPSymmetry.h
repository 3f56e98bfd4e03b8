#pragma once

#include "KARMPConstraint.h"

class KARIMPSymmetryLoader;

/// A constraint by which two geometries mirror one another in a plane of an axis system.
class KARMP_API KARMPSymmetry : public KARMPConstraint
{
    KARMP_ENTITY(KARMPSymmetry, KARMPConstraint)

public:
    /// Writes and reads "Symmetry" with both options after the base's content, the alignment first.
    /// A missing option is reported and fails, after the other one was read.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPSymmetryLoader*& loader) const;

    /// Stores the plane of the axis system; always 0. The loader is not told.
    KARStatus SetSelectedPlane(KARMPSelectedPlane::Enum plane);
    /// Always 0.
    KARStatus GetSelectedPlane(KARMPSelectedPlane::Enum& plane) const;
    /// Stores the alignment and tells the loader, whose answer is the result; 0 without one. A
    /// failing GetLoader is a failed check and a failure.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

protected:
    KARMPSymmetry();
    KARMPSymmetry(const KARMPSymmetry& source, CopyMode mode);
    ~KARMPSymmetry() override;

private:
    KARMPSelectedPlane::Enum m_plane = KARMPSelectedPlane::XY;
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
};
