#include "KARMPCylinder.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCylinder, "373926FE-8710-4a26-B7BA-D8FE17F5AA40");

KARMPCylinder::KARMPCylinder() = default;
KARMPCylinder::KARMPCylinder(const KARMPCylinder& source, CopyMode mode)
    : Super(source, mode), m_radius(source.m_radius)
{}
KARMPCylinder::~KARMPCylinder() = default;

namespace {

// Meant: the names that are written are not the ones that are read, so of a cylinder that is read
// back from its own output only the radius is left.
auto Written(auto& origin, auto& axis, auto& radius)
{
    return std::tuple(karmp::Triple(karmp::OriginNames, origin),
                      karmp::Triple(karmp::DirectionNames, axis), karmp::Number(L"radius", radius));
}

auto Read(auto& origin, auto& axis, auto& radius)
{
    return std::tuple(karmp::Triple(karmp::CentreNames, origin),
                      karmp::Triple(karmp::NormalNames, axis), karmp::Number(L"radius", radius));
}

} // namespace

KARStatus KARMPCylinder::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Cylinder", Written(m_origin, m_axis, m_radius));
}

KARStatus KARMPCylinder::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Cylinder",
                           Read(m_origin, m_axis, m_radius));
}
