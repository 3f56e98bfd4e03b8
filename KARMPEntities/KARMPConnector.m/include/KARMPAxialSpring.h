// Setters store a value; a null handle is a failed check and a failure, and the former value stays.
// Getters give a null handle and a failure without a value; that is a failed check, except for the
// actuator force. No loader is told.
#pragma once

#include "KARMPConnector.h"

class KARIMPAxialSpringLoader;
class KARMPValue;

/// A spring and damper along the line between its bodies, with a force of an actuator besides.
class KARMP_API KARMPAxialSpring : public KARMPConnector
{
    KARMP_ENTITY(KARMPAxialSpring, KARMPConnector)

public:
    using Super::GetLoader;
    using Value = QOBSharedHandle<KARMPValue>;

    /// Writes and reads "AxialSpring" with the behaviour and the values that are set. Failures
    /// inside are reported; 0 but for a null node, a missing element and a failing base.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPAxialSpringLoader*& loader) const;

    /// Stores the senses in which the spring acts; always 0.
    virtual KARStatus SetBehavior(KARMPSpringBehavior::Enum behavior)
    {
        m_behavior = behavior;
        return KARSuccess;
    }
    /// Always 0.
    virtual KARStatus GetBehavior(KARMPSpringBehavior::Enum& behavior) const
    {
        behavior = m_behavior;
        return KARSuccess;
    }
    /// The length at which the spring has no force.
    virtual KARStatus SetRestLength(const Value& value) { return m_restLength.Set(value); }
    virtual KARStatus GetRestLength(Value& value) const { return m_restLength.Require(value); }
    /// Force per length.
    virtual KARStatus SetStiffness(const Value& value) { return m_stiffness.Set(value); }
    virtual KARStatus GetStiffness(Value& value) const { return m_stiffness.Require(value); }
    /// The force that an actuator adds; documents call it the pre-load force.
    virtual KARStatus SetActuatorForce(const Value& value) { return m_actuatorForce.Set(value); }
    virtual KARStatus GetActuatorForce(Value& value) const { return m_actuatorForce.Get(value); }
    /// Force per velocity.
    virtual KARStatus SetDamping(const Value& value) { return m_damping.Set(value); }
    virtual KARStatus GetDamping(Value& value) const { return m_damping.Require(value); }

protected:
    KARMPAxialSpring();
    /// A copy has the behaviour and no values.
    KARMPAxialSpring(const KARMPAxialSpring& source, CopyMode mode);
    ~KARMPAxialSpring() override;

private:
    KARMPSpringBehavior::Enum m_behavior = KARMPSpringBehavior::Bidirectional;
    KARMPLink<KARMPValue> m_restLength;
    KARMPLink<KARMPValue> m_stiffness;
    KARMPLink<KARMPValue> m_damping;
    KARMPLink<KARMPValue> m_actuatorForce;
};
