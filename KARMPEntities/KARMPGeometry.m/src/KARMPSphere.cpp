#include "KARMPSphere.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPSphere, "B0DCE707-057F-4792-8B91-D88ECE8F1FD2");

template <>
struct karmp::ContentOf<KARMPSphere>
{
    using C = KARMPSphere;
    static constexpr auto List =
        Element(L"Sphere", "A sphere.", CountingFrame,
                Coordinates(PointOf<&C::m_center>(L"Center", CentreNames, "Its centre."),
                            Length<&C::m_radius>(L"radius", "Its radius.")));
};
KARMP_DEFINE_CONTENT(KARMPSphere);

KARMPSphere::KARMPSphere() = default;
KARMPSphere::KARMPSphere(const KARMPSphere& source, CopyMode mode)
    : Super(source, mode), m_radius(source.m_radius)
{}
KARMPSphere::~KARMPSphere() = default;
