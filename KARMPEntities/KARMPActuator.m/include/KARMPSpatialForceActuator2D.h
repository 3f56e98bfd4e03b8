#pragma once

#include "KARMPActuator.h"
#include "KARMathPoint2D.h"
#include "KARMathVector2D.h"

#include <array>

class KARIMPSpatialForceActuator2DLoader;
class KARMPBody2D;
class KARMPValue;

/// A force and a torque on a body in a plane, by the force's values along x and y and the torque's
/// value about the normal.
///
/// A setter that stores something tells the loader, if there is one; a loader that cannot be
/// fetched and one that fails are a failed check and a failure, and what was stored stays. The
/// loader hears of the actuator's own values.
class KARMP_API KARMPSpatialForceActuator2D : public KARMPActuator
{
    KARMP_ENTITY(KARMPSpatialForceActuator2D, KARMPActuator)

public:
    using Super::GetLoader;
    using ForceComponents = std::array<QOBSharedHandle<KARMPValue>, 2>;
    using TorqueComponents = std::array<QOBSharedHandle<KARMPValue>, 1>;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads all items through their setters. Whatever cannot be read is a failed check and no
    /// failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a planar force actuator's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPSpatialForceActuator2DLoader*& loader) const;

    /// Stores two new constants, which are added to the world that the actuator stands in.
    KARStatus SetForce(const KARMathVector2D& force);
    /// Stores the values. A null handle among them is a failed check: nothing changes, and the
    /// loader decides on the status.
    KARStatus SetForce(const ForceComponents& force);
    /// Gives the numbers of two constants; any other value is a failed check and a failure, and its
    /// component is 0.
    KARStatus GetForce(KARMathVector2D& force) const;
    /// Gives the values, null handles included; always 0.
    KARStatus GetForce(ForceComponents& force) const;
    /// Stores the number in the constant that is there, or in a new one, which is added to the
    /// world that the actuator stands in.
    KARStatus SetTorque(const double& torque);
    /// The same three for the torque.
    KARStatus SetTorque(const TorqueComponents& torque);
    KARStatus GetTorque(double& torque) const;
    KARStatus GetTorque(TorqueComponents& torque) const;

    /// Stores the point where the force acts, as it is.
    KARStatus SetApplicationPoint(const KARMathPoint2D& point);
    /// Gives the stored point; always 0.
    KARStatus GetApplicationPoint(KARMathPoint2D& point) const;
    /// Stores the body; the one that is set already gives 1. A null handle is a failed check and a
    /// failure, and the former body stays.
    KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>& body);
    /// Gives the body, null without one; always 0.
    KARStatus GetBody(QOBSharedHandle<KARMPBody2D>& body) const;
    /// Whether the components are along the body's axes; always 0.
    KARStatus SetIsInLocalFrame(bool isInLocalFrame);
    KARStatus IsInLocalFrame(bool& isInLocalFrame) const;

protected:
    KARMPSpatialForceActuator2D();
    /// A copy has the application point and the flag; it has neither values nor a body.
    KARMPSpatialForceActuator2D(const KARMPSpatialForceActuator2D& source, CopyMode mode);
    ~KARMPSpatialForceActuator2D() override;

private:
    KARStatus TellForce() const;
    KARStatus TellTorque() const;

    ForceComponents m_force;
    TorqueComponents m_torque;
    KARMathPoint2D m_applicationPoint;
    KARMPLink<KARMPBody2D> m_body;
    bool m_isInLocalFrame = false;
};
