#include "KARMPPlane.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPPlane, "3E9E426D-0006-4927-B66F-ABA768A7698A");

template <>
struct karmp::ContentOf<KARMPPlane>
{
    using C = KARMPPlane;
    static constexpr auto List =
        Element(L"Plane", "A plane.", CountingFrame, PlaneCoordinates<&C::m_plane>());
};
KARMP_DEFINE_CONTENT(KARMPPlane);

KARMPPlane::KARMPPlane() = default;
KARMPPlane::KARMPPlane(const KARMPPlane& source, CopyMode mode)
    : Super(source, mode), m_plane(source.m_plane)
{}
KARMPPlane::~KARMPPlane() = default;
