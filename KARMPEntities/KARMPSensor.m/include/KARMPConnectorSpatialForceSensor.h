#pragma once

#include "KARMPSensor.h"
#include "KARMathVector.h"

class KARIMPConnectorSpatialForceSensorLoader;
class KARMPConnector;
class KARMathAxis;

/// Measures the force and the torque that a connector exerts on one of its bodies, in world axes.
class KARMP_API KARMPConnectorSpatialForceSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPConnectorSpatialForceSensor, KARMPSensor)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Makes force and torque zero. A negative index of the body, which only a document can give,
    /// is a failed check and a failure, and both stay.
    KARStatus Reset() override;
    /// Has the loader measure; 1 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPConnectorSpatialForceSensorLoader*& loader) const;
    using Super::GetLoader;

    /// Stores the connector that is measured. A null handle is a failed check and a failure, and
    /// the former connector stays.
    KARStatus SetConnector(const QOBSharedHandle<KARMPConnector>& connector)
    {
        return m_connector.Set(connector);
    }
    /// Gives the connector; without one a null handle, a failed check and a failure.
    KARStatus GetConnector(QOBSharedHandle<KARMPConnector>& connector) const
    {
        return m_connector.Require(connector);
    }
    /// Stores which body of the connector force and torque act on. A negative index is a failed
    /// check and a failure, and the former index stays.
    KARStatus SetIndexBody(int index);
    /// Gives the index; a failed check and a failure, with the argument left alone, when a document
    /// gave a negative one.
    KARStatus GetIndexBody(int& index) const;

    /// Stores force and torque, in world axes; always 0.
    KARStatus SetSpatialForce(KARMathVector force, KARMathVector torque);
    /// Takes six doubles: force, then torque, in world axes. Another index than the stored one is a
    /// failure; a null array is a failed check and a failure.
    KARStatus SetSpatialForce(int index, double const* const forceAndTorque);
    /// Fills six doubles, in the same manner.
    KARStatus GetSpatialForce(int index, double* const forceAndTorque) const;
    /// Gives force and torque along the directions of a frame: those of the world, or of the frame
    /// that the loader reads for another mode. Without that frame both are zero, and it is a failed
    /// check and a failure.
    KARStatus GetSpatialForce(KARMathVector& force, KARMathVector& torque,
                              KARMPAxisMode::Enum mode) const;
    /// Gives the frame of the connector: the status of the loader. No loader and a failing fetch of
    /// it are each a failed check and a failure.
    KARStatus GetConnectorFrame(KARMathAxis& frame) const;

protected:
    KARMPConnectorSpatialForceSensor();
    /// A copy has index, force and torque, and no connector.
    KARMPConnectorSpatialForceSensor(const KARMPConnectorSpatialForceSensor& source, CopyMode mode);
    ~KARMPConnectorSpatialForceSensor() override;

private:
    KARMPLink<KARMPConnector> m_connector;
    int m_bodyIndex = 0;
    KARMathVector m_force;
    KARMathVector m_torque;
};
