#include "KARMPRevoluteConstraint.h"

#include "KARMPFriction.h"

#include <tuple>

KARMP_DEFINE_ENTITY(KARMPRevoluteConstraint, "9DA79E20-64E1-46FB-A3B5-1EEEBA9FBEC6");

template <>
struct karmp::ContentOf<KARMPRevoluteConstraint>
{
    using C = KARMPRevoluteConstraint;
    static constexpr auto List =
        Element(
            L"RevoluteConstraint", "A turning about an axis.", KinematicFrame,
            Friction<&C::m_friction>(
                ReferenceLength<&C::m_friction, 6>(L"ReferenceDiameter",
                                                   "The diameter of the pin."),
                ReferenceLength<&C::m_friction, 5>(L"ReferenceAxialDiameter",
                                                   "The diameter of the collar."),
                ReferenceLength<&C::m_friction, 4>(L"ReferenceLength", "The length of the bore.")))
            .NamedBy<&C::getClassSerializeID_>();
};
KARMP_DEFINE_CONTENT(KARMPRevoluteConstraint);

KARMPRevoluteConstraint::KARMPRevoluteConstraint() = default;
KARMPRevoluteConstraint::KARMPRevoluteConstraint(const KARMPRevoluteConstraint& source,
                                                 CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}
KARMPRevoluteConstraint::~KARMPRevoluteConstraint() = default;

std::wstring_view KARMPRevoluteConstraint::getClassSerializeID_() const
{
    return ClassContent().element;
}

KARStatus KARMPRevoluteConstraint::SetFrictionParameters(
    double staticFriction, double staticSpeedLimit, double dynamicFriction,
    double dynamicSpeedLimit, double referenceLength, double referenceAxialDiameter,
    double referenceDiameter)
{
    m_friction = {staticFriction,  staticSpeedLimit,       dynamicFriction,  dynamicSpeedLimit,
                  referenceLength, referenceAxialDiameter, referenceDiameter};
    return KARSuccess;
}

KARStatus KARMPRevoluteConstraint::GetFrictionParameters(
    double& staticFriction, double& staticSpeedLimit, double& dynamicFriction,
    double& dynamicSpeedLimit, double& referenceLength, double& referenceAxialDiameter,
    double& referenceDiameter) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit, referenceLength,
             referenceAxialDiameter, referenceDiameter) = std::tuple_cat(m_friction);
    return KARSuccess;
}
