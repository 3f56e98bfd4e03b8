#include "KARMPParabola.h"

#include "KARMPConicCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPParabola, "14EFD987-446A-445c-B8AD-A26C2ED4D2E7");

KARMPParabola::KARMPParabola() = default;
KARMPParabola::KARMPParabola(const KARMPParabola& source, CopyMode mode)
    : Super(source, mode), m_curvature(source.m_curvature)
{}
KARMPParabola::~KARMPParabola() = default;

KARStatus KARMPParabola::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(
        *this, serializer, L"Parabola",
        karmp::ConicCoordinates(m_center, m_majorDirection, m_normal, m_curvature));
}

KARStatus KARMPParabola::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    return karmp::ReadKind(
        *this, deserializer, entities, L"Parabola",
        karmp::ConicCoordinates(m_center, m_majorDirection, m_normal, m_curvature));
}
