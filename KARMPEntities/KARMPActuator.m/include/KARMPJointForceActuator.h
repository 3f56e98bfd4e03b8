#pragma once

#include "KARMPActuator.h"

class KARIMPJointForceActuatorLoader;
class KARMPJoint;
class KARMPValue;

/// A force or torque along one freedom of a joint.
///
/// A setter that stores something tells the loader, if there is one; a loader that cannot be
/// fetched and one that fails are a failed check and a failure, and what was stored stays.
class KARMP_API KARMPJointForceActuator : public KARMPActuator
{
    KARMP_ENTITY(KARMPJointForceActuator, KARMPActuator)

public:
    using Super::GetLoader;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads force, joint and index through their setters. A missing force or index is a failed
    /// check, and so is an index out of range; none of them is a failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a joint force actuator's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPJointForceActuatorLoader*& loader) const;
    /// Stores the joint; the one that is set already gives 1. A null handle is a failed check and a
    /// failure.
    virtual KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint);
    /// Gives the joint. Without one a null handle, a failed check and a failure.
    virtual KARStatus GetJoint(QOBSharedHandle<KARMPJoint>& joint) const;

    /// Stores the value of the force, or of the torque. A null handle is a failed check: the former
    /// value stays, and the loader is told of the null handle and decides on the status.
    KARStatus SetForce(const QOBSharedHandle<KARMPValue>& force);
    /// Gives the value. Without one a null handle, a failed check and a failure.
    KARStatus GetForce(QOBSharedHandle<KARMPValue>& force) const { return m_force.Require(force); }
    /// Stores the index of the freedom, 0 to 5; any other is a failure. The loader is not told.
    KARStatus SetIndexDOF(const int& index);
    /// Gives the index; a failure when it is out of range.
    KARStatus GetIndexDOF(int& index) const;

protected:
    KARMPJointForceActuator();
    /// A copy has the index, and neither force nor joint.
    KARMPJointForceActuator(const KARMPJointForceActuator& source, CopyMode mode);
    ~KARMPJointForceActuator() override;

private:
    KARMPLink<KARMPValue> m_force;
    KARMPLink<KARMPJoint> m_joint;
    int m_indexDOF = 0;
};
