#include "KARMPLine.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPLine, "B684BDE5-65A2-4edd-8408-DE764ED65963");

template <>
struct karmp::ContentOf<KARMPLine>
{
    using C = KARMPLine;
    static KARMathPoint Origin(const C& line) { return line.m_line.GetOrigin(); }
    static void SetOrigin(C& line, const KARMathPoint& origin) { line.m_line.SetOrigin(origin); }
    static KARMathDirection Direction(const C& line) { return line.m_line.GetDirection(); }
    static void SetDirection(C& line, const KARMathDirection& direction)
    {
        line.m_line.SetDirection(direction);
    }
    static constexpr auto List = Element(
        L"Line", "A straight line without ends.", CountingFrame,
        Coordinates(
            PointOf<&Origin>(L"Origin", OriginNames, "A point of the line.").Through<&SetOrigin>(),
            DirectionOf<&Direction>(L"Direction", DirectionNames, "Its direction, a unit vector.")
                .Through<&SetDirection>()));
};
KARMP_DEFINE_CONTENT(KARMPLine);

KARMPLine::KARMPLine() = default;
KARMPLine::KARMPLine(const KARMPLine& source, CopyMode mode)
    : Super(source, mode), m_line(source.m_line)
{}
KARMPLine::~KARMPLine() = default;
