#pragma once

#include "KARMPEquation.h"

#include <vector>

/// A linear relation among the variables that a constraint links to: a coefficient for each term,
/// and a constant if there is one.
class KARMP_API KARMPLinearEquation : public KARMPEquation
{
    KARMP_ENTITY(KARMPLinearEquation, KARMPEquation)

public:
    /// Writes "LinearEquation" with the base's content, the constant and the terms. Failures are
    /// reported; of the terms, the last one alone decides whether they failed, and an equation
    /// without terms fails.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same. The terms are taken in the order of their elements, whatever their indices.
    /// What is missing is reported; without the constant or the list of terms it fails.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Appends a coefficient; always 0.
    virtual KARStatus AddLinearTerm(double coefficient);
    /// Replaces the coefficient at an index from 0; outside the list nothing happens and 1.
    virtual KARStatus SetLinearTerm(int index, double coefficient);
    /// Gives the coefficient at an index from 0; outside the list 0.0 and 1.
    virtual KARStatus GetLinearTerm(int index, double& coefficient) const;
    /// True once a constant was set.
    virtual bool HasConstantTerm() const { return m_hasConstant; }
    /// Stores the constant; always 0.
    virtual KARStatus SetConstantTerm(double constant);
    /// Gives the constant, which means something only when there is one; always 0.
    virtual KARStatus GetConstantTerm(double& constant) const;

protected:
    KARMPLinearEquation();
    /// A copy knows whether the source has a constant; it takes neither its value nor the terms.
    KARMPLinearEquation(const KARMPLinearEquation& source, CopyMode mode);
    ~KARMPLinearEquation() override;

private:
    bool WriteConstant(KARMPSerializer* element) const;
    bool WriteTerms(KARMPSerializer* element) const;
    bool ReadConstant(const KARMPDeserializer* element);
    bool ReadTerms(const KARMPDeserializer* element);

    std::vector<double> m_terms;
    double m_constant = 0.0;
    bool m_hasConstant = false;
};
