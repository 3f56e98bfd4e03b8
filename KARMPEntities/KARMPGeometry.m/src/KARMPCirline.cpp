#include "KARMPCirline.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCirline, "3DB2E27B-60E6-4005-85C3-C062AE8D3671");

KARMPCirline::KARMPCirline() = default;
KARMPCirline::KARMPCirline(const KARMPCirline& source, CopyMode mode)
    : Super(source, mode), m_curvature(source.m_curvature)
{}
KARMPCirline::~KARMPCirline() = default;

namespace {

// What stands in "Coordinates", in order.
auto coordinates(auto& center, auto& majorDirection, auto& normal, auto& curvature)
{
    return std::tuple(karmp::Triple(karmp::CentreNames, center),
                      karmp::Triple(karmp::DirectionNames, majorDirection),
                      karmp::Triple(karmp::NormalNames, normal),
                      karmp::Number(L"curvature", curvature));
}

} // namespace

KARStatus KARMPCirline::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Cirline",
                            coordinates(m_center, m_majorDirection, m_normal, m_curvature));
}

KARStatus KARMPCirline::Deserialize(const KARMPDeserializer* deserializer,
                                    const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Cirline",
                           coordinates(m_center, m_majorDirection, m_normal, m_curvature));
}
