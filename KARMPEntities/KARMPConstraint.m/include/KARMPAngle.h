#pragma once

#include "KARMPConstraint.h"

/// A constraint on the angle between two directions.
class KARMP_API KARMPAngle : public KARMPConstraint
{
    KARMP_ENTITY(KARMPAngle, KARMPConstraint)

public:
    /// Writes and reads "Angle" with the option after the base's content. A missing option is
    /// reported and fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores how the hinge lies to the directions; always 0. The loader is not told.
    KARStatus SetHingeMode(KARMPHingeMode::Enum mode);
    /// Always 0.
    KARStatus GetHingeMode(KARMPHingeMode::Enum& mode) const;

protected:
    KARMPAngle();
    KARMPAngle(const KARMPAngle& source, CopyMode mode);
    ~KARMPAngle() override;

private:
    KARMPHingeMode::Enum m_hingeMode = KARMPHingeMode::Parallel;
};
