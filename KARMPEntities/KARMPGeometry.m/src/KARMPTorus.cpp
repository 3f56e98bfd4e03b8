#include "KARMPTorus.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPTorus, "2E627EB0-41C4-40a9-96F5-41EB6EAB3C59");

template <>
struct karmp::ContentOf<KARMPTorus>
{
    using C = KARMPTorus;
    static constexpr auto List = Element(
        L"Torus", "A torus.", CountingFrame,
        Coordinates(PointOf<&C::m_center>(L"Center", CentreNames, "Its centre."),
                    DirectionOf<&C::m_normal>(L"Normal", NormalNames, "Its axis, a unit vector."),
                    Length<&C::m_majorRadius>(L"major_radius", "Its major radius."),
                    Length<&C::m_minorRadius>(L"minor_radius", "Its minor radius.")));
};
KARMP_DEFINE_CONTENT(KARMPTorus);

KARMPTorus::KARMPTorus() = default;
KARMPTorus::KARMPTorus(const KARMPTorus& source, CopyMode mode)
    : Super(source, mode), m_majorRadius(source.m_majorRadius), m_minorRadius(source.m_minorRadius)
{}
KARMPTorus::~KARMPTorus() = default;
