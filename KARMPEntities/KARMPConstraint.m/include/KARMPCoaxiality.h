#pragma once

#include "KARMPConstraint.h"

class KARIMPCoaxialityLoader;

/// A constraint by which two geometries have one axis.
class KARMP_API KARMPCoaxiality : public KARMPConstraint
{
    KARMP_ENTITY(KARMPCoaxiality, KARMPConstraint)

public:
    /// Writes and reads "Coaxiality" with the option after the base's content. A missing option is
    /// reported and fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPCoaxialityLoader*& loader) const;

    /// Stores the alignment and tells the loader, whose answer is the result; 0 without one. A
    /// failing GetLoader is a failed check, and 0.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

protected:
    KARMPCoaxiality();
    KARMPCoaxiality(const KARMPCoaxiality& source, CopyMode mode);
    ~KARMPCoaxiality() override;

private:
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
};
