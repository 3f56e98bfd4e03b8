#include "KARMPPoint2D.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPPoint2D, "50988F37-ED74-4A53-B049-948CE0206C09");

template <>
struct karmp::ContentOf<KARMPPoint2D>
{
    using C = KARMPPoint2D;
    static constexpr auto List =
        Element(L"Point2D", "A point of a plane.", CountingFrame,
                Coordinates(PointOf<&C::m_point>(L"Origin", PlanarOriginNames, "The point.")));
};
KARMP_DEFINE_CONTENT(KARMPPoint2D);

KARMPPoint2D::KARMPPoint2D() = default;
KARMPPoint2D::KARMPPoint2D(const KARMPPoint2D& source, CopyMode mode)
    : Super(source, mode), m_point(source.m_point)
{}
KARMPPoint2D::~KARMPPoint2D() = default;
