#include "KARMPEllipse.h"

#include "KARMPConicCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPEllipse, "2C5061F4-6F15-4565-B119-29CA0D8B953D");

KARMPEllipse::KARMPEllipse() = default;
KARMPEllipse::KARMPEllipse(const KARMPEllipse& source, CopyMode mode)
    : Super(source, mode), m_majorRadius(source.m_majorRadius), m_minorRadius(source.m_minorRadius)
{}
KARMPEllipse::~KARMPEllipse() = default;

KARStatus KARMPEllipse::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(*this, serializer, L"Ellipse",
                            karmp::ConicCoordinates(m_center, m_majorDirection, m_normal,
                                                    m_majorRadius, m_minorRadius));
}

KARStatus KARMPEllipse::Deserialize(const KARMPDeserializer* deserializer,
                                    const KARMPEntityTable& entities)
{
    return karmp::ReadKind(*this, deserializer, entities, L"Ellipse",
                           karmp::ConicCoordinates(m_center, m_majorDirection, m_normal,
                                                   m_majorRadius, m_minorRadius));
}
