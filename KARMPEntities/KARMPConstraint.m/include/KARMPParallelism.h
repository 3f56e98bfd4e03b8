#pragma once

#include "KARMPConstraint.h"

class KARIMPParallelismLoader;

/// A constraint by which two geometries have parallel directions.
class KARMP_API KARMPParallelism : public KARMPConstraint
{
    KARMP_ENTITY(KARMPParallelism, KARMPConstraint)

public:
    /// Writes and reads "Parallelism" with the option after the base's content. A missing option is
    /// reported and fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    using Super::GetLoader;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPParallelismLoader*& loader) const;

    /// Stores the alignment and tells the loader, whose answer is the result; 0 without one. A
    /// failing GetLoader is a failed check and a failure.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

protected:
    KARMPParallelism();
    KARMPParallelism(const KARMPParallelism& source, CopyMode mode);
    ~KARMPParallelism() override;

private:
    KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;
};
