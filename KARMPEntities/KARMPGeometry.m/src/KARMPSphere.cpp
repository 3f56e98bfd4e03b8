#include "KARMPSphere.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPSphere, "B0DCE707-057F-4792-8B91-D88ECE8F1FD2");

KARMPSphere::KARMPSphere() = default;
KARMPSphere::KARMPSphere(const KARMPSphere& source, CopyMode mode)
    : Super(source, mode), m_radius(source.m_radius)
{}
KARMPSphere::~KARMPSphere() = default;

namespace {

// What stands in "Coordinates", in order.
auto Coordinates(auto& center, auto& radius)
{
    return std::tuple(karmp::Triple(karmp::CentreNames, center), karmp::Number(L"radius", radius));
}

} // namespace

KARStatus KARMPSphere::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Sphere", Coordinates(m_center, m_radius));
}

KARStatus KARMPSphere::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Sphere",
                           Coordinates(m_center, m_radius));
}
