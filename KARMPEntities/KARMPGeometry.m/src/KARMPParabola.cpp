#include "KARMPParabola.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPParabola, "14EFD987-446A-445c-B8AD-A26C2ED4D2E7");

template <>
struct karmp::ContentOf<KARMPParabola>
{
    using C = KARMPParabola;
    static constexpr auto List =
        Element(L"Parabola", "A parabola.", CountingFrame,
                Coordinates(ConicPlane<&C::m_center, &C::m_majorDirection, &C::m_normal>(),
                            Number<&C::m_curvature>(L"curvature",
                                                    "Its curvature, the reciprocal of a length.")));
};
KARMP_DEFINE_CONTENT(KARMPParabola);

KARMPParabola::KARMPParabola() = default;
KARMPParabola::KARMPParabola(const KARMPParabola& source, CopyMode mode)
    : Super(source, mode), m_curvature(source.m_curvature)
{}
KARMPParabola::~KARMPParabola() = default;
