#include "KARMPCylindricalConstraint.h"

#include "KARMPFriction.h"

#include <tuple>

KARMP_DEFINE_ENTITY(KARMPCylindricalConstraint, "CE5F1E75-DB3D-425E-87BB-B18457533180");

template <>
struct karmp::ContentOf<KARMPCylindricalConstraint>
{
    using C = KARMPCylindricalConstraint;
    static constexpr auto List =
        Element(L"CylindricalConstraint", "A turning about an axis and a sliding along it.",
                KinematicFrame,
                Friction<&C::m_friction>(ReferenceLength<&C::m_friction, 5>(
                                             L"ReferenceDiameter", "The diameter of the pin."),
                                         ReferenceLength<&C::m_friction, 4>(
                                             L"ReferenceLength", "The length of the bore.")))
            .NamedBy<&C::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPCylindricalConstraint);

KARMPCylindricalConstraint::KARMPCylindricalConstraint() = default;
KARMPCylindricalConstraint::KARMPCylindricalConstraint(const KARMPCylindricalConstraint& source,
                                                       CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}
KARMPCylindricalConstraint::~KARMPCylindricalConstraint() = default;

std::wstring_view KARMPCylindricalConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}

KARStatus KARMPCylindricalConstraint::SetFrictionParameters(
    double staticFriction, double staticSpeedLimit, double dynamicFriction,
    double dynamicSpeedLimit, double referenceLength, double referenceDiameter)
{
    m_friction = {staticFriction,    staticSpeedLimit, dynamicFriction,
                  dynamicSpeedLimit, referenceLength,  referenceDiameter};
    return KARSuccess;
}

KARStatus KARMPCylindricalConstraint::GetFrictionParameters(
    double& staticFriction, double& staticSpeedLimit, double& dynamicFriction,
    double& dynamicSpeedLimit, double& referenceLength, double& referenceDiameter) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit, referenceLength,
             referenceDiameter) = std::tuple_cat(m_friction);
    return KARSuccess;
}
