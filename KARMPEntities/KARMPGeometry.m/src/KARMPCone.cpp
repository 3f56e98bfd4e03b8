#include "KARMPCone.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCone, "41DA82B3-4D89-4eb1-A647-A860747013CD");

KARMPCone::KARMPCone() = default;
KARMPCone::KARMPCone(const KARMPCone& source, CopyMode mode)
    : Super(source, mode), m_angle(source.m_angle)
{}
KARMPCone::~KARMPCone() = default;

namespace {

// What stands in "Coordinates", in order.
auto Coordinates(auto& origin, auto& axis, auto& angle)
{
    return std::tuple(karmp::Triple(karmp::OriginNames, origin),
                      karmp::Triple(karmp::DirectionNames, axis), karmp::Number(L"angle", angle));
}

} // namespace

KARStatus KARMPCone::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Cone", Coordinates(m_origin, m_axis, m_angle));
}

// Meant: the element that is read is not the one that is written, so a cone does not find its own
// output.
KARStatus KARMPCone::Deserialize(const KARMPDeserializer* deserializer,
                                 const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Cylicone",
                           Coordinates(m_origin, m_axis, m_angle));
}
