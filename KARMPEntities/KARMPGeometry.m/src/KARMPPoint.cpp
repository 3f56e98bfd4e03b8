#include "KARMPPoint.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPPoint, "0F73E9C4-70E1-4c45-B6A5-9A528EF579D2");

KARMPPoint::KARMPPoint() = default;
KARMPPoint::KARMPPoint(const KARMPPoint& source, CopyMode mode)
    : Super(source, mode), m_point(source.m_point)
{}
KARMPPoint::~KARMPPoint() = default;

namespace {

// What stands in "Coordinates", in order.
auto Coordinates(auto& point)
{
    return std::tuple(karmp::Triple(karmp::OriginNames, point));
}

} // namespace

KARStatus KARMPPoint::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Point", Coordinates(m_point));
}

KARStatus KARMPPoint::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Point", Coordinates(m_point));
}
