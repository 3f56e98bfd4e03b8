// The geometric constraints whose one option is how the directions of the two geometries lie to one
// another.
#pragma once

#include "KARMPConstraint.h"

/// Declares such a constraint, with the loader interface that is told of the option.
///
/// Its Serialize and Deserialize handle its class element with "Alignment" after the base's
/// content; a missing "Alignment" is reported and fails. GetLoader hands out the loader, null
/// without one; a failing fetch is a failed check and a failure. SetAlignment stores the alignment
/// and tells the loader, whose answer is the result; 0 without one. GetAlignment is always 0.
#define KARMP_ALIGNMENT_CONSTRAINT(Class, Loader)                                                  \
    class Loader;                                                                                  \
                                                                                                   \
    class KARMP_API Class : public KARMPConstraint                                                 \
    {                                                                                              \
        KARMP_ENTITY(Class, KARMPConstraint)                                                       \
                                                                                                   \
    public:                                                                                        \
        KARStatus Serialize(KARMPSerializer* serializer) const override;                           \
        KARStatus Deserialize(const KARMPDeserializer* deserializer,                               \
                              const KARMPEntityTable& entities) override;                          \
        using Super::GetLoader;                                                                    \
        virtual KARStatus GetLoader(Loader*& loader) const;                                        \
        KARStatus SetAlignment(KARMPAlignment::Enum alignment);                                    \
        KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;                             \
                                                                                                   \
    protected:                                                                                     \
        Class();                                                                                   \
        Class(const Class& source, CopyMode mode);                                                 \
        ~Class() override;                                                                         \
                                                                                                   \
    private:                                                                                       \
        KARMPAlignment::Enum m_alignment = KARMPAlignment::NotSpecified;                           \
    }

/// Two geometries have one axis. SetAlignment reports a failing GetLoader as its kin do, but
/// returns 0 then.
KARMP_ALIGNMENT_CONSTRAINT(KARMPCoaxiality, KARIMPCoaxialityLoader);
/// Two geometries have parallel directions.
KARMP_ALIGNMENT_CONSTRAINT(KARMPParallelism, KARIMPParallelismLoader);
/// Two geometries have directions at a right angle.
KARMP_ALIGNMENT_CONSTRAINT(KARMPPerpendicularity, KARIMPPerpendicularityLoader);
/// Two curves roll on one another.
KARMP_ALIGNMENT_CONSTRAINT(KARMPRollCurveConstraint, KARIMPRollCurveConstraintLoader);

#undef KARMP_ALIGNMENT_CONSTRAINT

/// A direction stands at a right angle on a surface. No loader is told of the option.
class KARMP_API KARMPNormal : public KARMPConstraint
{
    KARMP_ENTITY(KARMPNormal, KARMPConstraint)

public:
    /// Writes and reads "Normal" with the option after the base's content. A missing option is
    /// reported and fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores the alignment; always 0.
    KARStatus SetAlignment(KARMPAlignment::Enum alignment);
    /// Hands it out; always 0.
    KARStatus GetAlignment(KARMPAlignment::Enum& alignment) const;

protected:
    KARMPNormal();
    /// A copy is as new: it does not take the alignment.
    KARMPNormal(const KARMPNormal& source, CopyMode mode);
    ~KARMPNormal() override;

private:
    KARMPAlignment::Enum m_alignment{};
};
