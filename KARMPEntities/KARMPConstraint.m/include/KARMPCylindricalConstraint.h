#pragma once

#include "KARMPKinematicConstraint.h"

/// A turning about an axis and a sliding along it, with the friction of a pin in a bore.
class KARMP_API KARMPCylindricalConstraint : public KARMPKinematicConstraint
{
    KARMP_ENTITY(KARMPCylindricalConstraint, KARMPKinematicConstraint)

public:
    /// Writes "CylindricalConstraint" with the base's content and, while friction is enabled, the
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
                                    double referenceLength, double referenceDiameter);
    /// Always 0.
    KARStatus GetFrictionParameters(double& staticFriction, double& staticSpeedLimit,
                                    double& dynamicFriction, double& dynamicSpeedLimit,
                                    double& referenceLength, double& referenceDiameter) const;

protected:
    KARMPCylindricalConstraint();
    KARMPCylindricalConstraint(const KARMPCylindricalConstraint& source, CopyMode mode);
    ~KARMPCylindricalConstraint() override;

private:
    std::array<double, 6> m_friction{}; // in the order of SetFrictionParameters
};
