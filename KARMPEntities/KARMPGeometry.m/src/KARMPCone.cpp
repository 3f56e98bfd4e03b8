#include "KARMPCone.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCone, "41DA82B3-4D89-4eb1-A647-A860747013CD");

template <>
struct karmp::ContentOf<KARMPCone>
{
    using C = KARMPCone;
    // The element that is read is not the one that is written, so a cone does not find its own
    // output.
    static constexpr auto List =
        Element(L"Cone", "A circular cone.", CountingFrame,
                Coordinates(
                    PointOf<&C::m_origin>(L"Origin", OriginNames, "A point of the axis."),
                    DirectionOf<&C::m_axis>(L"Axis", DirectionNames, "Its axis, a unit vector."),
                    Number<&C::m_angle>(L"angle", "The angle between axis and side, in radians.",
                                        KARMPPhysicalQuantity::Angle)))
            .ReadAs(L"Cylicone");
};
KARMP_DEFINE_CONTENT(KARMPCone);

KARMPCone::KARMPCone() = default;
KARMPCone::KARMPCone(const KARMPCone& source, CopyMode mode)
    : Super(source, mode), m_angle(source.m_angle)
{}
KARMPCone::~KARMPCone() = default;
