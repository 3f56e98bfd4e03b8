#pragma once

#include "KARMPConstraint.h"

class KARWBFactory;

/// A constraint that is stated by equations.
class KARMP_API KARMPEquation : public KARMPConstraint
{
    KARMP_ENTITY(KARMPEquation, KARMPConstraint)

public:
    /// Writes "Equation" with the base's content; the equations are not written.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads "Equation" with the base's content.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores the factory that holds the equations, null included, and takes it over; always 0. An
    /// earlier factory is given up without being deleted.
    virtual KARStatus SetEquation(KARWBFactory* factory);
    /// Gives the factory, which the constraint keeps. Without one a null pointer, a failed check
    /// and a failure.
    virtual KARStatus GetEquation(KARWBFactory*& factory) const;

protected:
    KARMPEquation();
    /// A copy has no factory: the source keeps the one it owns.
    KARMPEquation(const KARMPEquation& source, CopyMode mode);
    ~KARMPEquation() override;

private:
    KARWBFactory* m_factory = nullptr; // owned; a pointer, since replacing does not delete
};
