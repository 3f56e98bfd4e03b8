#include "KARMPPrismaticConstraint.h"

#include "KARMPKinematicElement.h"

#include <tuple>

using namespace std::literals;

KARMP_DEFINE_ENTITY(KARMPPrismaticConstraint, "BC308F09-8349-44B7-8983-238FFE90BB57");

namespace {

constexpr std::array FrictionItems{karmp::StaticFriction,
                                   karmp::DynamicFriction,
                                   karmp::StaticSpeedLimit,
                                   karmp::DynamicSpeedLimit,
                                   karmp::FrictionItem{L"ReferenceWidth", 4},
                                   karmp::FrictionItem{L"ReferenceLength", 5}};

} // namespace

KARMPPrismaticConstraint::KARMPPrismaticConstraint() = default;

KARMPPrismaticConstraint::KARMPPrismaticConstraint(const KARMPPrismaticConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode), m_friction(source.m_friction)
{}

KARMPPrismaticConstraint::~KARMPPrismaticConstraint() = default;

std::wstring_view KARMPPrismaticConstraint::getClassSerializeID_() const
{
    return L"PrismaticConstraint"sv;
}

KARStatus KARMPPrismaticConstraint::SetFrictionParameters(
    double staticFriction, double staticSpeedLimit, double dynamicFriction,
    double dynamicSpeedLimit, double referenceWidth, double referenceLength)
{
    m_friction = {staticFriction,    staticSpeedLimit, dynamicFriction,
                  dynamicSpeedLimit, referenceWidth,   referenceLength};
    return KARSuccess;
}

KARStatus KARMPPrismaticConstraint::GetFrictionParameters(
    double& staticFriction, double& staticSpeedLimit, double& dynamicFriction,
    double& dynamicSpeedLimit, double& referenceWidth, double& referenceLength) const
{
    std::tie(staticFriction, staticSpeedLimit, dynamicFriction, dynamicSpeedLimit, referenceWidth,
             referenceLength) = std::tuple_cat(m_friction);
    return KARSuccess;
}

KARStatus KARMPPrismaticConstraint::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKinematic(*this, serializer, FrictionItems, m_friction.data());
}

KARStatus KARMPPrismaticConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                                const KARMPEntityTable& entities)
{
    return karmp::ReadKinematic(*this, deserializer, entities, FrictionItems, m_friction.data());
}
