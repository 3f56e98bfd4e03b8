#include "KARMPSphericalConstraint.h"

#include "KARMPKinematicElement.h"

#include <tuple>

using namespace std::literals;

KARMP_DEFINE_ENTITY(KARMPSphericalConstraint, "2D09247E-6087-49C7-A322-6001632B8A94");

namespace {

constexpr std::array FrictionItems{karmp::StaticFriction, karmp::DynamicFriction,
                                   karmp::StaticSpeedLimit, karmp::DynamicSpeedLimit,
                                   karmp::FrictionItem{L"ReferenceDiameter", 4}};

} // namespace

KARMPSphericalConstraint::KARMPSphericalConstraint() = default;

KARMPSphericalConstraint::KARMPSphericalConstraint(const KARMPSphericalConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}

KARMPSphericalConstraint::~KARMPSphericalConstraint() = default;

std::wstring_view KARMPSphericalConstraint::getClassSerializeID_() const
{
    return L"SphericalConstraint"sv;
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

KARStatus KARMPSphericalConstraint::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKinematic(*this, serializer, FrictionItems, m_friction.data());
}

KARStatus KARMPSphericalConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                                const KARMPEntityTable& entities)
{
    return karmp::ReadKinematic(*this, deserializer, entities, FrictionItems, m_friction.data());
}
