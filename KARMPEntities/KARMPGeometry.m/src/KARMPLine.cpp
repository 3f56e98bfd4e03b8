#include "KARMPLine.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPLine, "B684BDE5-65A2-4edd-8408-DE764ED65963");

KARMPLine::KARMPLine() = default;
KARMPLine::KARMPLine(const KARMPLine& source, CopyMode mode)
    : Super(source, mode), m_line(source.m_line)
{}
KARMPLine::~KARMPLine() = default;

namespace {

// What stands in "Coordinates", in order.
struct Values
{
    KARMathPoint origin;
    KARMathDirection direction;
};

auto Coordinates(auto& values)
{
    return std::tuple(karmp::Triple(karmp::OriginNames, values.origin),
                      karmp::Triple(karmp::DirectionNames, values.direction));
}

} // namespace

KARStatus KARMPLine::Serialize(KARMPSerializer* serializer) const
{
    const Values values{m_line.GetOrigin(), m_line.GetDirection()};
    return karmp::WriteKind(*this, serializer, L"Line", Coordinates(values));
}

KARStatus KARMPLine::Deserialize(const KARMPDeserializer* deserializer,
                                 const KARMPEntityTable& entities)
{
    Values values;
    const KARStatus status =
        karmp::ReadKind(*this, deserializer, entities, L"Line", Coordinates(values));
    if (KARFailed(status))
        return status;
    m_line.SetOrigin(values.origin);
    m_line.SetDirection(values.direction);
    return status;
}
