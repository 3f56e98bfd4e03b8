#include "KARMPShape.h"

#include "KARIMPShapeLoader.h"
#include "KARMPBody.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPUnlinkAll.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPShape, "22BF6BE3-9C8A-4FE2-B8D0-F2F0209BAA3E");

template <>
struct karmp::ContentOf<KARMPShape>
{
    using C = KARMPShape;
    static constexpr auto List =
        Base("What bodies look like and collide with.", LenientFrame,
             References<&C::GetLinkedBodyCount, &C::GetLinkedBody, &C::LinkToBody>(
                 L"Bodies", L"Body", "The bodies that have this shape.")
                 .Removing<&C::RemoveBody>()
                 .OtherSide(L"Shapes"));
};
KARMP_DEFINE_CONTENT(KARMPShape);

KARMPShape::KARMPShape() = default;
KARMPShape::KARMPShape(const KARMPShape& source, CopyMode mode) : Super(source, mode) {}
KARMPShape::~KARMPShape() = default;

void KARMPShape::ClearContainers()
{
    m_bodies.Clear();
}

KARStatus KARMPShape::RemoveParent()
{
    const QOBSharedHandle<KARMPShape> self(this);
    return karmp::UnlinkAll(m_bodies, [&self](KARMPBody& body) { return body.RemoveShape(self); });
}

KARStatus KARMPShape::GetLoader(KARIMPShapeLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPShape::GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body) const
{
    if (index >= GetLinkedBodyCount()) {
        body = nullptr;
        return KARFailure;
    }
    return m_bodies.Get(index, body);
}
