#include "KARMPLine2D.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPLine2D, "5FB1652B-CCE3-4A20-A659-D506EB33B803");

template <>
struct karmp::ContentOf<KARMPLine2D>
{
    using C = KARMPLine2D;
    static constexpr auto List =
        Element(L"Line2D", "A straight line of a plane, without ends.", CountingFrame,
                LineCoordinates<&C::m_line>(PlanarOriginNames, PlanarDirectionNames,
                                            "Its direction, of any length."));
};
KARMP_DEFINE_CONTENT(KARMPLine2D);

KARMPLine2D::KARMPLine2D() = default;
KARMPLine2D::KARMPLine2D(const KARMPLine2D& source, CopyMode mode)
    : Super(source, mode), m_line(source.m_line)
{}
KARMPLine2D::~KARMPLine2D() = default;
