#pragma once

#include "KARMPConstraint.h"

/// A constraint by which a direction stands at a right angle on a surface. No loader is told of its
/// option.
class KARMP_API KARMPNormal : public KARMPConstraint
{
    KARMP_ENTITY(KARMPNormal, KARMPConstraint)

public:
    /// Writes and reads "Normal" with the option after the base's content. A missing option is
    /// reported and fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Always 0.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

protected:
    KARMPNormal();
    /// A copy is as new: it does not take the alignment.
    KARMPNormal(const KARMPNormal& source, CopyMode mode);
    ~KARMPNormal() override;

private:
    KARMPAlignment::Enum m_alignment{};
};
