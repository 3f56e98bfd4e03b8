#include "KARMPPlane.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPPlane, "3E9E426D-0006-4927-B66F-ABA768A7698A");

KARMPPlane::KARMPPlane() = default;
KARMPPlane::KARMPPlane(const KARMPPlane& source, CopyMode mode)
    : Super(source, mode), m_plane(source.m_plane)
{}
KARMPPlane::~KARMPPlane() = default;

namespace {

// What stands in "Coordinates", in order.
struct Values
{
    KARMathPoint origin;
    KARMathDirection normal;
};

auto Coordinates(auto& values)
{
    return std::tuple(karmp::Triple(karmp::OriginNames, values.origin),
                      karmp::Triple(karmp::NormalNames, values.normal));
}

} // namespace

KARStatus KARMPPlane::Serialize(KARMPSerializer* serializer) const
{
    const Values values{m_plane.GetOrigin(), m_plane.GetNormal()};
    return karmp::WriteKind(*this, serializer, L"Plane", Coordinates(values));
}

KARStatus KARMPPlane::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    Values values;
    const KARStatus status =
        karmp::ReadKind(*this, deserializer, entities, L"Plane", Coordinates(values));
    if (KARFailed(status))
        return status;
    m_plane = KARMathPlane(values.origin, values.normal);
    return status;
}
