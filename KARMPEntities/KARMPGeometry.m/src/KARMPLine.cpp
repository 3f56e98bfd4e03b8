#include "KARMPLine.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPLine, "B684BDE5-65A2-4edd-8408-DE764ED65963");

template <>
struct karmp::ContentOf<KARMPLine>
{
    using C = KARMPLine;
    static constexpr auto List = Element(
        L"Line", "A straight line without ends.", CountingFrame,
        LineCoordinates<&C::m_line>(OriginNames, DirectionNames, "Its direction, a unit vector."));
};
KARMP_DEFINE_CONTENT(KARMPLine);

KARMPLine::KARMPLine() = default;
KARMPLine::KARMPLine(const KARMPLine& source, CopyMode mode)
    : Super(source, mode), m_line(source.m_line)
{}
KARMPLine::~KARMPLine() = default;
