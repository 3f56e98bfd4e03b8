#include "KARMPCircle2D.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCircle2D, "F5A9A1B4-855E-4655-AA4D-FBC37C925813");

template <>
struct karmp::ContentOf<KARMPCircle2D>
{
    using C = KARMPCircle2D;
    static constexpr auto List =
        Element(L"Circle2D", "A circle of a plane.", CountingFrame,
                Coordinates(PointOf<&C::m_center>(L"Center", PlanarCentreNames, "Its centre."),
                            Length<&C::m_radius>(L"radius", "Its radius.")));
};
KARMP_DEFINE_CONTENT(KARMPCircle2D);

KARMPCircle2D::KARMPCircle2D() = default;
KARMPCircle2D::KARMPCircle2D(const KARMPCircle2D& source, CopyMode mode)
    : Super(source, mode), m_center(source.m_center), m_radius(source.m_radius)
{}
KARMPCircle2D::~KARMPCircle2D() = default;
