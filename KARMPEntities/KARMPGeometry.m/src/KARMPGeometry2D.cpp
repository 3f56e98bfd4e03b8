#include "KARMPGeometry2D.h"

#include "KARIMPGeometry2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPConstraint.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPGeometryLinks.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSketch.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPGeometry2D, "6022510F-CB60-4C97-AF2B-7B467469472E");

template <>
struct karmp::ContentOf<KARMPGeometry2D>
{
    using C = KARMPGeometry2D;
    static KARStatus GetBody(const C& geometry, QOBSharedHandle<KARMPBody2D>& body)
    {
        return geometry.GetBody(body);
    }
    static KARStatus SetBody(C& geometry, const QOBSharedHandle<KARMPBody2D>& body)
    {
        return geometry.SetBody(body);
    }
    static KARStatus RemoveBody(C& geometry, const QOBSharedHandle<KARMPBody2D>& body)
    {
        return geometry.RemoveBody(body);
    }
    static constexpr auto List = Base(
        "A geometry of a planar mechanism.", LenientFrame,
        Reference<&GetBody, &SetBody>(
            L"Body2D", "The planar body that it moves with, in whose axes it is given.")
            .Removing<&RemoveBody>()
            .OtherSide(L"Geometries"),
        Reference<&C::m_sketch, &C::SetSketch>(L"Sketch", "The sketch in whose plane it lies."));
};
KARMP_DEFINE_CONTENT(KARMPGeometry2D);

KARMPGeometry2D::KARMPGeometry2D() = default;
KARMPGeometry2D::KARMPGeometry2D(const KARMPGeometry2D& source, CopyMode mode) : Super(source, mode)
{}
KARMPGeometry2D::~KARMPGeometry2D() = default;

void KARMPGeometry2D::ClearContainers()
{
    m_linkedConstraints.Clear();
}

KARStatus KARMPGeometry2D::RemoveParent()
{
    return karmp::UnlinkGeometry(*this, m_body, m_linkedConstraints);
}

KARStatus KARMPGeometry2D::GetLoader(KARIMPGeometry2DLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}
