// Each value is set and got as an entity or as a number in the unit of its quantity. A null handle,
// and having no value to give, is a failed check and a failure. A number becomes a constant, which
// stands in the spring's world, if there is one; only a constant is given as a number, all else is
// a failed check and a failure with 0. No loader is told.
#pragma once

#include "KARMPConnector.h"
#include "KARMathLine.h"

class KARIMPTorsionSpringLoader;
class KARMPValue;

/// A spring and damper that turns about a line of each of its bodies.
class KARMP_API KARMPTorsionSpring : public KARMPConnector
{
    KARMP_ENTITY(KARMPTorsionSpring, KARMPConnector)

public:
    using Super::GetLoader;
    using Value = QOBSharedHandle<KARMPValue>;

    /// Writes and reads "TorsionSpring" with its values and the behaviour, but not the attachments.
    /// Failures inside are reported, a value that is not set among them when it is written; 0 but
    /// for a null node, a missing element and a failing base.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPTorsionSpringLoader*& loader) const;

    /// Stores the line of one of the bodies; always 0, as are the three that follow.
    virtual KARStatus SetFirstAttachment(const KARMathLine& attachment);
    virtual KARStatus GetFirstAttachment(KARMathLine& attachment) const;
    virtual KARStatus SetSecondAttachment(const KARMathLine& attachment);
    virtual KARStatus GetSecondAttachment(KARMathLine& attachment) const;

    /// Torque per angle.
    virtual KARStatus SetStiffness(const Value& value) { return m_stiffness.Set(value); }
    virtual KARStatus SetStiffness(double stiffness);
    virtual KARStatus GetStiffness(Value& value) const { return m_stiffness.Require(value); }
    virtual KARStatus GetStiffness(double& stiffness) const;
    /// The angle at which the spring has no torque.
    virtual KARStatus SetRestAngle(const Value& value) { return m_restAngle.Set(value); }
    virtual KARStatus SetRestAngle(double angle);
    virtual KARStatus GetRestAngle(Value& value) const { return m_restAngle.Require(value); }
    virtual KARStatus GetRestAngle(double& angle) const;
    /// Torque per angular velocity.
    virtual KARStatus SetDampingCoefficient(const Value& value)
    {
        return m_dampingCoefficient.Set(value);
    }
    virtual KARStatus SetDampingCoefficient(double coefficient);
    virtual KARStatus GetDampingCoefficient(Value& value) const
    {
        return m_dampingCoefficient.Require(value);
    }
    virtual KARStatus GetDampingCoefficient(double& coefficient) const;

    /// Stores the senses in which the spring acts; always 0.
    virtual KARStatus SetBehavior(KARMPSpringBehavior::Enum behavior);
    /// Always 0.
    virtual KARStatus GetBehavior(KARMPSpringBehavior::Enum& behavior) const;

protected:
    KARMPTorsionSpring();
    /// A copy has attachments and behaviour, and no values.
    KARMPTorsionSpring(const KARMPTorsionSpring& source, CopyMode mode);
    ~KARMPTorsionSpring() override;

private:
    KARMathLine m_firstAttachment;
    KARMathLine m_secondAttachment;
    KARMPLink<KARMPValue> m_stiffness;
    KARMPLink<KARMPValue> m_restAngle;
    KARMPSpringBehavior::Enum m_behavior = KARMPSpringBehavior::Bidirectional;
    KARMPLink<KARMPValue> m_dampingCoefficient;
};
