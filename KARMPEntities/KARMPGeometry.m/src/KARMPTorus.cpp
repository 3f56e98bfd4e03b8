#include "KARMPTorus.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPTorus, "2E627EB0-41C4-40a9-96F5-41EB6EAB3C59");

KARMPTorus::KARMPTorus() = default;
KARMPTorus::KARMPTorus(const KARMPTorus& source, CopyMode mode)
    : Super(source, mode), m_majorRadius(source.m_majorRadius), m_minorRadius(source.m_minorRadius)
{}
KARMPTorus::~KARMPTorus() = default;

namespace {

// What stands in "Coordinates", in order.
auto Coordinates(auto& center, auto& normal, auto& majorRadius, auto& minorRadius)
{
    return std::tuple(
        karmp::Triple(karmp::CentreNames, center), karmp::Triple(karmp::NormalNames, normal),
        karmp::Number(L"major_radius", majorRadius), karmp::Number(L"minor_radius", minorRadius));
}

} // namespace

KARStatus KARMPTorus::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Torus",
                            Coordinates(m_center, m_normal, m_majorRadius, m_minorRadius));
}

KARStatus KARMPTorus::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Torus",
                           Coordinates(m_center, m_normal, m_majorRadius, m_minorRadius));
}
