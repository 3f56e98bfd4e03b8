#pragma once

#include "KARMPSensor.h"

#include <cstdint>

/// Measures whether a constraint is redundant. The result names constraints in two lists, whose
/// meaning, like that of the statuses, is the solver's; the constraints are linked to the sensor by
/// KARMPConstraint::LinkToSensor to be taken out of it when they are orphaned.
class KARMP_API KARMPConstraintSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPConstraintSensor, KARMPSensor)

public:
    /// What a solver found of a constraint.
    enum class RedundancyStatus : std::int32_t {
        Redundant = 0,   ///< Others imply it.
        Independent = 1, ///< No others imply it, or nothing was found yet.
        Inconsistent = 2 ///< Others contradict it.
    };

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes the status that of a new sensor and keeps the lists; always 0.
    KARStatus Reset() override;
    /// Forgets a constraint: the measured one, and one of the lists. A constraint that is in
    /// neither gives 1. A null handle is a failed check and a failure.
    KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint) override;

    /// Stores the constraint that is measured; KARMPConstraint::LinkToSensor makes the other side
    /// of the link. A null handle is a failed check and a failure, and the former constraint stays.
    KARStatus SetConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_constraint.Set(constraint);
    }
    /// Gives the constraint; without one a null handle, a failed check and a failure.
    KARStatus GetConstraint(QOBSharedHandle<KARMPConstraint>& constraint) const
    {
        return m_constraint.Require(constraint);
    }
    /// Stores a result in place of the former one. Repeated entries of a list are stored once; a
    /// null entry is a failed check, is left out, and makes the status a failure.
    KARStatus SetRedundancyStatus(RedundancyStatus status,
                                  const QOBSharedVector<KARMPConstraint>& first,
                                  const QOBSharedVector<KARMPConstraint>& second);
    /// Gives the result; always 0.
    KARStatus GetRedundancyStatus(RedundancyStatus& status, QOBSharedVector<KARMPConstraint>& first,
                                  QOBSharedVector<KARMPConstraint>& second) const;
    /// Takes the sensor out of the lists of sensors of some constraints, up to the first failure,
    /// which is the result. A constraint that does not know the sensor is no failure; a null entry
    /// is a failed check and a failure.
    KARStatus RemoveReferenceParent(const QOBSharedVector<KARMPConstraint>& constraints);

protected:
    void ClearContainers() override;
    /// Takes the sensor out of its constraint, which it drops, and out of those of its lists.
    KARStatus RemoveParent() override;

    KARMPConstraintSensor();
    /// A copy has the status, and neither constraint nor lists.
    KARMPConstraintSensor(const KARMPConstraintSensor& source, CopyMode mode);
    ~KARMPConstraintSensor() override;

private:
    KARMPLink<KARMPConstraint> m_constraint;
    RedundancyStatus m_status = RedundancyStatus::Independent;
    KARMPLinkList<KARMPConstraint> m_first;
    KARMPLinkList<KARMPConstraint> m_second;
};
