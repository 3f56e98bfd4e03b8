#include "KARMPCylinder.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCylinder, "373926FE-8710-4a26-B7BA-D8FE17F5AA40");

template <>
struct karmp::ContentOf<KARMPCylinder>
{
    using C = KARMPCylinder;
    // The names that are written are not the ones that are read, so of a cylinder that is read back
    // from its own output only the radius is left.
    static constexpr auto List = Element(
        L"Cylinder", "A circular cylinder.", CountingFrame,
        Coordinates(
            Unequal(PointOf<&C::m_origin>(L"Origin", OriginNames, "A point of the axis."),
                    PointOf<&C::m_origin>(L"Origin", CentreNames, "A point of the axis.")),
            Unequal(DirectionOf<&C::m_axis>(L"Axis", DirectionNames, "Its axis, a unit vector."),
                    DirectionOf<&C::m_axis>(L"Axis", NormalNames, "Its axis, a unit vector.")),
            Length<&C::m_radius>(L"radius", "Its radius.")));
};
KARMP_DEFINE_CONTENT(KARMPCylinder);

KARMPCylinder::KARMPCylinder() = default;
KARMPCylinder::KARMPCylinder(const KARMPCylinder& source, CopyMode mode)
    : Super(source, mode), m_radius(source.m_radius)
{}
KARMPCylinder::~KARMPCylinder() = default;
