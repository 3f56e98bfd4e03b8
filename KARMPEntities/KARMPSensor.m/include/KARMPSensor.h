#pragma once

#include "KARMPEntity.h"

class KARMPConstraint;

/// Base of everything that holds a measurement: the solver fills it in, Update asks for that and
/// Reset forgets it.
///
/// A concrete sensor has an element of its own. What cannot be added to it is a failed check and a
/// failure; what a reader misses there is a failed check and stays as it is, unless the class tells
/// otherwise.
class KARMP_API KARMPSensor : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPSensor, KARMPEntity)

public:
    /// Writes the entity's content into the concrete sensor's element. A null serializer is a
    /// failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the entity's content from the concrete sensor's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

public:
    /// Forgets the stored measurement without asking the loader; 0 here.
    virtual KARStatus Reset();
    /// Has the loader measure; 0 here.
    virtual KARStatus Update();
    /// Forgets a constraint, which this class does not keep: always 0. A null handle is a failed
    /// check and a failure.
    virtual KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint);

protected:
    KARMPSensor();
    KARMPSensor(const KARMPSensor& source, CopyMode mode);
    ~KARMPSensor() override;
};
