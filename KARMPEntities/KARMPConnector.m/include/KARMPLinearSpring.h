// Each value is set and got as an entity or as a number in the unit of its quantity. A null handle,
// and having no value to give, is a failed check and a failure. A number becomes a constant, which
// stands in the spring's world, if there is one; only a constant is given as a number, all else is
// a failed check and a failure with 0. No loader is told.
#pragma once

#include "KARMPConnector.h"
#include "KARMathPoint.h"

class KARIMPLinearSpringLoader;
class KARMPValue;

/// A spring and damper between a point of each of its bodies.
class KARMP_API KARMPLinearSpring : public KARMPConnector
{
    KARMP_ENTITY(KARMPLinearSpring, KARMPConnector)

public:
    using Super::GetLoader;
    using Value = QOBSharedHandle<KARMPValue>;

    /// Writes and reads "LinearSpring" with its values and the behaviour, but not the attachments.
    /// Failures inside are reported, a value that is not set among them when it is written; 0 but
    /// for a null node, a missing element and a failing base.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPLinearSpringLoader*& loader) const;

    /// Stores the point of one of the bodies; always 0, as are the three that follow.
    virtual KARStatus SetFirstAttachment(const KARMathPoint& attachment);
    virtual KARStatus GetFirstAttachment(KARMathPoint& attachment) const;
    virtual KARStatus SetSecondAttachment(const KARMathPoint& attachment);
    virtual KARStatus GetSecondAttachment(KARMathPoint& attachment) const;

    /// Force per length.
    virtual KARStatus SetStiffness(const Value& value) { return m_stiffness.Set(value); }
    virtual KARStatus SetStiffness(double stiffness);
    virtual KARStatus GetStiffness(Value& value) const { return m_stiffness.Require(value); }
    virtual KARStatus GetStiffness(double& stiffness) const;
    /// The length at which the spring has no force.
    virtual KARStatus SetRestLength(const Value& value) { return m_restLength.Set(value); }
    virtual KARStatus SetRestLength(double length);
    virtual KARStatus GetRestLength(Value& value) const { return m_restLength.Require(value); }
    virtual KARStatus GetRestLength(double& length) const;
    /// Force per velocity.
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
    KARMPLinearSpring();
    /// A copy has attachments and behaviour, and no values.
    KARMPLinearSpring(const KARMPLinearSpring& source, CopyMode mode);
    ~KARMPLinearSpring() override;

private:
    KARMathPoint m_firstAttachment;
    KARMathPoint m_secondAttachment;
    KARMPLink<KARMPValue> m_stiffness;
    KARMPLink<KARMPValue> m_restLength;
    KARMPSpringBehavior::Enum m_behavior = KARMPSpringBehavior::Bidirectional;
    KARMPLink<KARMPValue> m_dampingCoefficient;
};
