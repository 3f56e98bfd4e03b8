#include "KARMPCylindricalConstraint.h"

#include "KARMPKinematicElement.h"

#include <tuple>

using namespace std::literals;

KARMP_DEFINE_ENTITY(KARMPCylindricalConstraint, "CE5F1E75-DB3D-425E-87BB-B18457533180");

namespace {

constexpr std::array FrictionItems{karmp::StaticFriction,
                                   karmp::DynamicFriction,
                                   karmp::StaticSpeedLimit,
                                   karmp::DynamicSpeedLimit,
                                   karmp::FrictionItem{L"ReferenceDiameter", 5},
                                   karmp::FrictionItem{L"ReferenceLength", 4}};

} // namespace

KARMPCylindricalConstraint::KARMPCylindricalConstraint() = default;

KARMPCylindricalConstraint::KARMPCylindricalConstraint(const KARMPCylindricalConstraint& source,
                                                       CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}

KARMPCylindricalConstraint::~KARMPCylindricalConstraint() = default;

std::wstring_view KARMPCylindricalConstraint::getClassSerializeID_() const
{
    return L"CylindricalConstraint"sv;
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

KARStatus KARMPCylindricalConstraint::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKinematic(*this, serializer, FrictionItems, m_friction.data());
}

KARStatus KARMPCylindricalConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                                  const KARMPEntityTable& entities)
{
    return karmp::ReadKinematic(*this, deserializer, entities, FrictionItems, m_friction.data());
}
