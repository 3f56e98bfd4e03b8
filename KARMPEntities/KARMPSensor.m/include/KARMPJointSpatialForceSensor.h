#pragma once

#include "KARMPSensor.h"
#include "KARMathVector.h"

class KARIMPJointSpatialForceSensorLoader;
class KARMPBody;
class KARMPJoint;
class KARMathAxis;

/// Measures the force and the torque that a joint exerts on one of its bodies, in world axes.
class KARMP_API KARMPJointSpatialForceSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPJointSpatialForceSensor, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes force and torque zero; always 0.
    KARStatus Reset() override;
    /// Has the loader measure; 1 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPJointSpatialForceSensorLoader*& loader) const;
    using Super::GetLoader;

    /// Stores the joint that is measured. A null handle is a failed check and a failure, and the
    /// former joint stays.
    KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint) { return m_joint.Set(joint); }
    /// Gives the joint; without one a null handle, a failed check and a failure.
    KARStatus GetJoint(QOBSharedHandle<KARMPJoint>& joint) const { return m_joint.Require(joint); }
    /// Stores which body of the joint force and torque act on. A negative index is a failed check
    /// and a failure, and the former index stays.
    KARStatus SetIndexBody(int index);
    /// Gives the index; a failed check and a failure, with the argument left alone, when a document
    /// gave a negative one.
    KARStatus GetIndexBody(int& index) const;
    /// Gives the joint's body with that index. No joint is a failed check and a failure, an index
    /// outside the joint's bodies a failure; both give a null handle.
    KARStatus GetBody(QOBSharedHandle<KARMPBody>& body) const;

    /// Stores force and torque, in world axes; always 0.
    KARStatus SetSpatialForce(KARMathVector force, KARMathVector torque);
    /// Fills six doubles: force, then torque, in world axes. A null array is a failed check and a
    /// failure.
    KARStatus GetSpatialForce(double* const forceAndTorque) const;
    /// Gives force and torque along the directions of a frame: those of the world, or of the frame
    /// that the loader reads for another mode. Without that frame both are zero, and it is a failed
    /// check and a failure.
    KARStatus GetSpatialForce(KARMathVector& force, KARMathVector& torque,
                              KARMPAxisMode::Enum mode) const;
    /// Gives the frame of the joint: the status of the loader. No loader and a failing fetch of it
    /// are each a failed check and a failure.
    KARStatus GetJointFrame(KARMathAxis& frame) const;

protected:
    KARMPJointSpatialForceSensor();
    /// A copy has index, force and torque, and no joint.
    KARMPJointSpatialForceSensor(const KARMPJointSpatialForceSensor& source, CopyMode mode);
    ~KARMPJointSpatialForceSensor() override;

private:
    KARMPLink<KARMPJoint> m_joint;
    int m_bodyIndex = 0;
    KARMathVector m_force;
    KARMathVector m_torque;
};
