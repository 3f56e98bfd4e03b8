#include "KARMPCylicone.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCylicone, "99914B73-C4EE-4772-A8A3-DAD5626BC2EB");

template <>
struct karmp::ContentOf<KARMPCylicone>
{
    using C = KARMPCylicone;
    static constexpr auto List = Element(
        L"Cylicone", "A circular cone that is cut off.", CountingFrame,
        Coordinates(PointOf<&C::m_origin>(L"Origin", OriginNames, "A point of the axis."),
                    DirectionOf<&C::m_axis>(L"Axis", DirectionNames, "Its axis, a unit vector."),
                    Number<&C::m_angle>(L"angle", "The angle between axis and side, in radians.",
                                        KARMPPhysicalQuantity::Angle),
                    Length<&C::m_radius>(L"radius", "Its radius.")));
};
KARMP_DEFINE_CONTENT(KARMPCylicone);

KARMPCylicone::KARMPCylicone() = default;
KARMPCylicone::KARMPCylicone(const KARMPCylicone& source, CopyMode mode)
    : Super(source, mode), m_angle(source.m_angle), m_radius(source.m_radius)
{}
KARMPCylicone::~KARMPCylicone() = default;
