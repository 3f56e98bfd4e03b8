#include "KARMPRevoluteConstraint.h"

#include "KARMPKinematicElement.h"

#include <tuple>

using namespace std::literals;

KARMP_DEFINE_ENTITY(KARMPRevoluteConstraint, "9DA79E20-64E1-46FB-A3B5-1EEEBA9FBEC6");

namespace {

constexpr std::array FrictionItems{karmp::StaticFriction,
                                   karmp::DynamicFriction,
                                   karmp::StaticSpeedLimit,
                                   karmp::DynamicSpeedLimit,
                                   karmp::FrictionItem{L"ReferenceDiameter", 6},
                                   karmp::FrictionItem{L"ReferenceAxialDiameter", 5},
                                   karmp::FrictionItem{L"ReferenceLength", 4}};

} // namespace

KARMPRevoluteConstraint::KARMPRevoluteConstraint() = default;

KARMPRevoluteConstraint::KARMPRevoluteConstraint(const KARMPRevoluteConstraint& source,
                                                 CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}

KARMPRevoluteConstraint::~KARMPRevoluteConstraint() = default;

std::wstring_view KARMPRevoluteConstraint::getClassSerializeID_() const
{
    return L"RevoluteConstraint"sv;
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

KARStatus KARMPRevoluteConstraint::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKinematic(*this, serializer, FrictionItems, m_friction.data());
}

KARStatus KARMPRevoluteConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                               const KARMPEntityTable& entities)
{
    return karmp::ReadKinematic(*this, deserializer, entities, FrictionItems, m_friction.data());
}
