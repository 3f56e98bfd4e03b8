#include "KARMPSketch.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPSketch, "EE00589C-16C5-4360-A459-C7CD92E5937D");

template <>
struct karmp::ContentOf<KARMPSketch>
{
    using C = KARMPSketch;
    static constexpr auto List = Element(L"Sketch", "The plane of a planar mechanism.",
                                         CountingFrame, PlaneCoordinates<&C::m_plane>());
};
KARMP_DEFINE_CONTENT(KARMPSketch);

KARMPSketch::KARMPSketch() = default;
KARMPSketch::KARMPSketch(const KARMPSketch& source, CopyMode mode)
    : Super(source, mode), m_plane(source.m_plane)
{}
KARMPSketch::~KARMPSketch() = default;
