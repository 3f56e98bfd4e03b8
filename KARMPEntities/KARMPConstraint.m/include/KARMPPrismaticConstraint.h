#pragma once

#include "KARMPKinematicConstraint.h"

/// A sliding along an axis, with the friction of a slider in its guide.
class KARMP_API KARMPPrismaticConstraint : public KARMPKinematicConstraint
{
    KARMP_ENTITY(KARMPPrismaticConstraint, KARMPKinematicConstraint)

public:
    /// Writes "PrismaticConstraint" with the base's content and, while friction is enabled, the
    /// friction parameters. Failures are reported and give KARUnexpected.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same; friction parameters enable friction, and one that is missing keeps its
    /// value.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    std::wstring_view getClassSerializeID_() const override;

    /// Stores the parameters of the friction model, without a check and without enabling friction;
    /// always 0.
    KARStatus SetFrictionParameters(double staticFriction, double staticSpeedLimit,
                                    double dynamicFriction, double dynamicSpeedLimit,
                                    double referenceWidth, double referenceLength);
    /// Always 0.
    KARStatus GetFrictionParameters(double& staticFriction, double& staticSpeedLimit,
                                    double& dynamicFriction, double& dynamicSpeedLimit,
                                    double& referenceWidth, double& referenceLength) const;

protected:
    KARMPPrismaticConstraint();
    KARMPPrismaticConstraint(const KARMPPrismaticConstraint& source, CopyMode mode);
    ~KARMPPrismaticConstraint() override;

private:
    std::array<double, 6> m_friction{}; // in the order of SetFrictionParameters
};
