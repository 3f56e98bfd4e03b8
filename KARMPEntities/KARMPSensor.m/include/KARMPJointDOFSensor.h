#pragma once

#include "KARMPSensor.h"

class KARIMPJointDOFSensorLoader;
class KARMPJoint;

/// Measures one freedom of a joint. Lengths and angles have the units of the joint's variables.
class KARMP_API KARMPJointDOFSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPJointDOFSensor, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes position, velocity and acceleration 0, and the index of the freedom, too; always 0.
    KARStatus Reset() override;
    /// Has the loader measure; 1 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPJointDOFSensorLoader*& loader) const;
    using Super::GetLoader;

    /// Stores the joint that is measured. A null handle is a failed check and a failure, and the
    /// former joint stays.
    KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint) { return m_joint.Set(joint); }
    /// Gives the joint; without one a null handle, a failed check and a failure.
    KARStatus GetJoint(QOBSharedHandle<KARMPJoint>& joint) const { return m_joint.Require(joint); }
    /// Stores which freedom is measured: 0 to 2 are translations, 3 to 5 rotations along and about
    /// the axes of the joint's frame. Any other index is a failure and changes nothing.
    KARStatus SetIndexDOF(int index);
    /// Gives the index; a failure, with the argument left alone, when a document gave another one
    /// than 0 to 5.
    KARStatus GetIndexDOF(int& index) const;
    /// The measured position, velocity and acceleration of the freedom; always 0.
    KARStatus SetPosition(double position);
    KARStatus GetPosition(double& position) const;
    KARStatus SetVelocity(double velocity);
    KARStatus GetVelocity(double& velocity) const;
    KARStatus SetAcceleration(double acceleration);
    KARStatus GetAcceleration(double& acceleration) const;

protected:
    KARMPJointDOFSensor();
    /// A copy has index and result, and no joint.
    KARMPJointDOFSensor(const KARMPJointDOFSensor& source, CopyMode mode);
    ~KARMPJointDOFSensor() override;

private:
    KARMPLink<KARMPJoint> m_joint;
    int m_index = 0;
    double m_position = 0.0;
    double m_velocity = 0.0;
    double m_acceleration = 0.0;
};
