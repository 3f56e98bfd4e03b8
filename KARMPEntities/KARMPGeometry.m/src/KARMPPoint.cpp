#include "KARMPPoint.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPPoint, "0F73E9C4-70E1-4c45-B6A5-9A528EF579D2");

template <>
struct karmp::ContentOf<KARMPPoint>
{
    using C = KARMPPoint;
    static constexpr auto List =
        Element(L"Point", "A point.", CountingFrame,
                Coordinates(PointOf<&C::m_point>(L"Origin", OriginNames, "The point.")));
};
KARMP_DEFINE_CONTENT(KARMPPoint);

KARMPPoint::KARMPPoint() = default;
KARMPPoint::KARMPPoint(const KARMPPoint& source, CopyMode mode)
    : Super(source, mode), m_point(source.m_point)
{}
KARMPPoint::~KARMPPoint() = default;
