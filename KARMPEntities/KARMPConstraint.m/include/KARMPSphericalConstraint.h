#pragma once

#include "KARMPKinematicConstraint.h"

/// A turning about a point, with the friction of a ball in its socket.
class KARMP_API KARMPSphericalConstraint : public KARMPKinematicConstraint
{
    KARMP_ENTITY(KARMPSphericalConstraint, KARMPKinematicConstraint)

public:
    /// Writes "SphericalConstraint" with the base's content and, while friction is enabled, the
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
                                    double referenceDiameter);
    /// Always 0.
    KARStatus GetFrictionParameters(double& staticFriction, double& staticSpeedLimit,
                                    double& dynamicFriction, double& dynamicSpeedLimit,
                                    double& referenceDiameter) const;

protected:
    KARMPSphericalConstraint();
    KARMPSphericalConstraint(const KARMPSphericalConstraint& source, CopyMode mode);
    ~KARMPSphericalConstraint() override;

private:
    std::array<double, 5> m_friction{}; // in the order of SetFrictionParameters
};
