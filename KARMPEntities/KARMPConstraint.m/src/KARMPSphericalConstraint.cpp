#include "KARMPSphericalConstraint.h"

#include "KARMPFriction.h"

#include <tuple>

KARMP_DEFINE_ENTITY(KARMPSphericalConstraint, "2D09247E-6087-49C7-A322-6001632B8A94");

template <>
struct karmp::ContentOf<KARMPSphericalConstraint>
{
    using C = KARMPSphericalConstraint;
    static constexpr auto List =
        Element(L"SphericalConstraint", "A turning about a point.", KinematicFrame,
                Friction<&C::m_friction>(ReferenceLength<&C::m_friction, 4>(
                    L"ReferenceDiameter", "The diameter of the ball.")))
            .NamedBy<&C::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPSphericalConstraint);

KARMPSphericalConstraint::KARMPSphericalConstraint() = default;
KARMPSphericalConstraint::KARMPSphericalConstraint(const KARMPSphericalConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}
KARMPSphericalConstraint::~KARMPSphericalConstraint() = default;

std::wstring_view KARMPSphericalConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}

KARStatus KARMPSphericalConstraint::SetFrictionParameters(double staticFriction,
                                                          double staticSpeedLimit,
                                                          double dynamicFriction,
                                                          double dynamicSpeedLimit,
                                                          double referenceDiameter)
{
    m_friction = {staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit,
                  referenceDiameter};
    return KARSuccess;
}

KARStatus KARMPSphericalConstraint::GetFrictionParameters(double& staticFriction,
                                                          double& staticSpeedLimit,
                                                          double& dynamicFriction,
                                                          double& dynamicSpeedLimit,
                                                          double& referenceDiameter) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit,
             referenceDiameter) = std::tuple_cat(m_friction);
    return KARSuccess;
}
