#include "KARMPHyperbola.h"

#include "KARMPConicCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPHyperbola, "33B59224-4573-4659-B071-6992102A46BB");

KARMPHyperbola::KARMPHyperbola() = default;
KARMPHyperbola::KARMPHyperbola(const KARMPHyperbola& source, CopyMode mode)
    : Super(source, mode), m_majorRadius(source.m_majorRadius), m_minorRadius(source.m_minorRadius)
{}
KARMPHyperbola::~KARMPHyperbola() = default;

KARStatus KARMPHyperbola::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Hyperbola",
                            karmp::ConicCoordinates(m_center, m_majorDirection, m_normal,
                                                    m_majorRadius, m_minorRadius));
}

KARStatus KARMPHyperbola::Deserialize(const KARMPDeserializer* deserializer,
                                      const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Hyperbola",
                           karmp::ConicCoordinates(m_center, m_majorDirection, m_normal,
                                                   m_majorRadius, m_minorRadius));
}
