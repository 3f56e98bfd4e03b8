#include "KARMPHyperbola.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPHyperbola, "33B59224-4573-4659-B071-6992102A46BB");

template <>
struct karmp::ContentOf<KARMPHyperbola>
{
    using C = KARMPHyperbola;
    static constexpr auto List =
        Element(L"Hyperbola", "A hyperbola.", CountingFrame,
                Coordinates(ConicPlane<&C::m_center, &C::m_majorDirection, &C::m_normal>(),
                            Length<&C::m_majorRadius>(L"major_radius", "Its major radius."),
                            Length<&C::m_minorRadius>(L"minor_radius", "Its minor radius.")));
};
KARMP_DEFINE_CONTENT(KARMPHyperbola);

KARMPHyperbola::KARMPHyperbola() = default;
KARMPHyperbola::KARMPHyperbola(const KARMPHyperbola& source, CopyMode mode)
    : Super(source, mode), m_majorRadius(source.m_majorRadius), m_minorRadius(source.m_minorRadius)
{}
KARMPHyperbola::~KARMPHyperbola() = default;
