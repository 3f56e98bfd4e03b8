#include "KARMPCylicone.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCylicone, "99914B73-C4EE-4772-A8A3-DAD5626BC2EB");

KARMPCylicone::KARMPCylicone() = default;
KARMPCylicone::KARMPCylicone(const KARMPCylicone& source, CopyMode mode)
    : Super(source, mode), m_angle(source.m_angle), m_radius(source.m_radius)
{}
KARMPCylicone::~KARMPCylicone() = default;

namespace {

// What stands in "Coordinates", in order.
auto Coordinates(auto& origin, auto& axis, auto& angle, auto& radius)
{
    return std::tuple(karmp::Triple(karmp::OriginNames, origin),
                      karmp::Triple(karmp::DirectionNames, axis), karmp::Number(L"angle", angle),
                      karmp::Number(L"radius", radius));
}

} // namespace

KARStatus KARMPCylicone::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Cylicone",
                            Coordinates(m_origin, m_axis, m_angle, m_radius));
}

KARStatus KARMPCylicone::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Cylicone",
                           Coordinates(m_origin, m_axis, m_angle, m_radius));
}
