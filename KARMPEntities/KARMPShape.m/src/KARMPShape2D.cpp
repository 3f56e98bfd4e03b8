#include "KARMPShape2D.h"

#include "KARIMPShape2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPUnlinkAll.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPShape2D, "4F69F836-7402-47C0-B4F8-27FF45E4039F");

template <>
struct karmp::ContentOf<KARMPShape2D>
{
    using C = KARMPShape2D;
    using Body = QOBSharedHandle<KARMPBody2D>;
    // Of the operations of these names the planar ones.
    static constexpr KARStatus (C::*BodyAt)(int, Body&) const = &C::GetLinkedBody;
    static constexpr KARStatus (C::*LinkBody)(const Body&) = &C::LinkToBody;
    static constexpr KARStatus (C::*RemoveBody)(const Body&) = &C::RemoveBody;
    static constexpr auto List =
        Base("What planar bodies look like and collide with.", LenientFrame,
             References<&C::GetLinkedBodyCount, BodyAt, LinkBody>(
                 L"Bodies", L"Body2D", "The planar bodies that have this shape.")
                 .Removing<RemoveBody>()
                 .OtherSide(L"Shapes"));
};
// The base writes spatial bodies, which a planar shape does not have.
KARMP_DEFINE_CONTENT(KARMPShape2D, KARMPEntity);

KARMPShape2D::KARMPShape2D() = default;
KARMPShape2D::KARMPShape2D(const KARMPShape2D& source, CopyMode mode) : Super(source, mode) {}
KARMPShape2D::~KARMPShape2D() = default;

// The base's list as well: what was linked by a spatial handle is held no longer than the rest.
void KARMPShape2D::ClearContainers()
{
    Super::ClearContainers();
    m_bodies.Clear();
}

KARStatus KARMPShape2D::RemoveParent()
{
    const QOBSharedHandle<KARMPShape2D> self(this);
    return karmp::UnlinkAll(m_bodies,
                            [&self](KARMPBody2D& body) { return body.RemoveShape(self); });
}

KARStatus KARMPShape2D::GetLoader(KARIMPShape2DLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPShape2D::GetLinkedBody(int index, QOBSharedHandle<KARMPBody2D>& body) const
{
    if (index >= GetLinkedBodyCount()) {
        body = nullptr;
        return KARFailure;
    }
    return m_bodies.Get(index, body);
}
