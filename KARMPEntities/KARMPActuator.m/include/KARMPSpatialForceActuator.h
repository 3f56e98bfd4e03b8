#pragma once

#include "KARMPActuator.h"
#include "KARMathPoint.h"
#include "KARMathTransformation.h"

#include <array>

class KARIMPSpatialForceActuatorLoader;
class KARMPBody;
class KARMPValue;

/// A force and a torque on a body, each by its values along x, y and z.
///
/// A setter that stores something tells the loader, if there is one; a loader that cannot be
/// fetched and one that fails are a failed check and a failure, and what was stored stays. The
/// loader hears of the actuator's own values.
class KARMP_API KARMPSpatialForceActuator : public KARMPActuator
{
    KARMP_ENTITY(KARMPSpatialForceActuator, KARMPActuator)

public:
    using Super::GetLoader;
    using Body = QOBSharedHandle<KARMPBody>;
    using Components = std::array<QOBSharedHandle<KARMPValue>, 3>;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads all items through their setters, those with a body argument with a null one. Whatever
    /// cannot be read is a failed check and no failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a spatial force actuator's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPSpatialForceActuatorLoader*& loader) const;

    /// Stores three new constants, which are added to the world that the actuator stands in.
    KARStatus SetForce(const KARMathVector& force);
    /// Stores three values. With a body, the numbers of three constants are turned from its axes
    /// into the world's and become the numbers of the actuator's own constants. With an expression
    /// among the values they are stored as they are. A null handle, and a value of another kind
    /// where numbers are needed, are a failed check: nothing changes, and the loader decides on the
    /// status.
    KARStatus SetForce(const Components& force, const Body& body);
    /// Gives the numbers of three constants; any other value is a failed check and a failure, and
    /// its component is 0.
    KARStatus GetForce(KARMathVector& force) const;
    /// Gives the values, null handles included. With a body and three constants it gives new
    /// constants in no world, whose numbers are those along the body's axes; a position of the body
    /// that cannot be inverted is a failed check and counts as the identity.
    KARStatus GetForce(Components& force, const Body& body) const;
    /// The same four for the torque.
    KARStatus SetTorque(const KARMathVector& torque);
    KARStatus SetTorque(const Components& torque, const Body& body);
    KARStatus GetTorque(KARMathVector& torque) const;
    KARStatus GetTorque(Components& torque, const Body& body) const;

    /// Stores the body and its present position; the one that is set already gives 1. A null handle
    /// is a failed check and a failure.
    KARStatus SetBody(const Body& body);
    /// Gives the body, null without one; always 0.
    KARStatus GetBody(Body& body) const;
    /// Stores the point where the force acts, in world axes. With a body, the point is taken in
    /// that body's axes and stored relative to the position of SetBody.
    KARStatus SetApplicationPoint(const KARMathPoint& point, const Body& body);
    /// Gives the point, moved as the actuator's body moved since SetBody. Without a body the
    /// argument stays, with 0.
    KARStatus GetApplicationPoint(KARMathPoint& point) const;
    /// Whether the components are along the body's axes; always 0.
    KARStatus SetIsInLocalFrame(bool isInLocalFrame);
    KARStatus IsInLocalFrame(bool& isInLocalFrame) const;

protected:
    KARMPSpatialForceActuator();
    /// A copy has the application point, the flag and the position that SetBody recorded, and
    /// neither values nor body.
    KARMPSpatialForceActuator(const KARMPSpatialForceActuator& source, CopyMode mode);
    ~KARMPSpatialForceActuator() override;

private:
    void Store(Components& own, const Components& given, const Body& body);
    KARStatus TellForce() const;
    KARStatus TellTorque() const;

    Components m_force;
    Components m_torque;
    KARMathPoint m_applicationPoint;
    KARMPLink<KARMPBody> m_body;
    bool m_isInLocalFrame = false;
    KARMathTransformation m_referencePosition;
};
