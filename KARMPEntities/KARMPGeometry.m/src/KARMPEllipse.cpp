#include "KARMPEllipse.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPEllipse, "2C5061F4-6F15-4565-B119-29CA0D8B953D");

template <>
struct karmp::ContentOf<KARMPEllipse>
{
    using C = KARMPEllipse;
    static constexpr auto List =
        Element(L"Ellipse", "An ellipse.", CountingFrame,
                Coordinates(ConicPlane<&C::m_center, &C::m_majorDirection, &C::m_normal>(),
                            Length<&C::m_majorRadius>(L"major_radius", "Its major radius."),
                            Length<&C::m_minorRadius>(L"minor_radius", "Its minor radius.")));
};
KARMP_DEFINE_CONTENT(KARMPEllipse);

KARMPEllipse::KARMPEllipse() = default;
KARMPEllipse::KARMPEllipse(const KARMPEllipse& source, CopyMode mode)
    : Super(source, mode), m_majorRadius(source.m_majorRadius), m_minorRadius(source.m_minorRadius)
{}
KARMPEllipse::~KARMPEllipse() = default;
