#include "KARMPPlane.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPPlane, "3E9E426D-0006-4927-B66F-ABA768A7698A");

template <>
struct karmp::ContentOf<KARMPPlane>
{
    using C = KARMPPlane;
    static KARMathPoint Origin(const C& plane) { return plane.m_plane.GetOrigin(); }
    static void SetOrigin(C& plane, const KARMathPoint& origin)
    {
        plane.m_plane = KARMathPlane(origin, plane.m_plane.GetNormal());
    }
    static KARMathDirection Normal(const C& plane) { return plane.m_plane.GetNormal(); }
    static void SetNormal(C& plane, const KARMathDirection& normal)
    {
        plane.m_plane = KARMathPlane(plane.m_plane.GetOrigin(), normal);
    }
    static constexpr auto List = Element(
        L"Plane", "A plane.", CountingFrame,
        Coordinates(
            PointOf<&Origin>(L"Origin", OriginNames, "A point of the plane.").Through<&SetOrigin>(),
            DirectionOf<&Normal>(L"Normal", NormalNames, "Its normal, a unit vector.")
                .Through<&SetNormal>()));
};
KARMP_DEFINE_CONTENT(KARMPPlane);

KARMPPlane::KARMPPlane() = default;
KARMPPlane::KARMPPlane(const KARMPPlane& source, CopyMode mode)
    : Super(source, mode), m_plane(source.m_plane)
{}
KARMPPlane::~KARMPPlane() = default;
