#include "KARMPCirline.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPCirline, "3DB2E27B-60E6-4005-85C3-C062AE8D3671");

template <>
struct karmp::ContentOf<KARMPCirline>
{
    using C = KARMPCirline;
    static constexpr auto List =
        Element(L"Cirline", "A circle, or a line where its curvature is 0.", CountingFrame,
                Coordinates(ConicPlane<&C::m_center, &C::m_majorDirection, &C::m_normal>(),
                            Number<&C::m_curvature>(L"curvature",
                                                    "Its curvature, the reciprocal of a length.")));
};
KARMP_DEFINE_CONTENT(KARMPCirline);

KARMPCirline::KARMPCirline() = default;
KARMPCirline::KARMPCirline(const KARMPCirline& source, CopyMode mode)
    : Super(source, mode), m_curvature(source.m_curvature)
{}
KARMPCirline::~KARMPCirline() = default;
