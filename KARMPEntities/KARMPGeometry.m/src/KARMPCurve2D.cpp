#include "KARMPCurve2D.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPCurve2D, "8A49ABC8-686C-4EF8-A03D-F52524B54DD1");

template <>
struct karmp::ContentOf<KARMPCurve2D>
{
    static constexpr auto List =
        Element(L"Curve2D", "A free curve of a plane, whose segments are not kept.", CountingFrame);
};
KARMP_DEFINE_CONTENT(KARMPCurve2D);

KARMPCurve2D::KARMPCurve2D() = default;
KARMPCurve2D::KARMPCurve2D(const KARMPCurve2D& source, CopyMode mode)
    : Super(source, mode), m_segments(source.m_segments)
{}
KARMPCurve2D::~KARMPCurve2D() = default;

int KARMPCurve2D::IsThreadSafe() const
{
    return GetCurveCount() < 1 ? 1 : 0;
}
