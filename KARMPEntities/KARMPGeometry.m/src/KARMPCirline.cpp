#include "KARMPCirline.h"

#include "KARMPConicCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCirline, "3DB2E27B-60E6-4005-85C3-C062AE8D3671");

KARMPCirline::KARMPCirline() = default;
KARMPCirline::KARMPCirline(const KARMPCirline& source, CopyMode mode)
    : Super(source, mode), m_curvature(source.m_curvature)
{}
KARMPCirline::~KARMPCirline() = default;

KARStatus KARMPCirline::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(
        *this, serializer, L"Cirline",
        karmp::ConicCoordinates(m_center, m_majorDirection, m_normal, m_curvature));
}

KARStatus KARMPCirline::Deserialize(const KARMPDeserializer* deserializer,
                                    const KARMPEntityTable& entities)
{
    return karmp::ReadKind(
        *this, deserializer, entities, L"Cirline",
        karmp::ConicCoordinates(m_center, m_majorDirection, m_normal, m_curvature));
}
