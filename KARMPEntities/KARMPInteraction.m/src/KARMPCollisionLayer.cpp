#include "KARMPCollisionLayer.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPCollisionLayer, "F42B25FA-D784-42C7-AE75-0B97C621173F", KARMPEntity);

template <>
struct karmp::ContentOf<KARMPCollisionLayer>
{
    using C = KARMPCollisionLayer;
    static constexpr auto List = Element(
        L"CollisionLayer", "A group of entities that collision rules treat alike.", LenientFrame,
        References<&C::GetCollidableCount, &C::GetCollidable, &C::AddCollidable>(
            L"Entities", L"Entity", "The entities of the layer: its collidables.")
            .Removing<&C::RemoveCollidable>());
};
KARMP_DEFINE_CONTENT(KARMPCollisionLayer);

KARMPCollisionLayer::KARMPCollisionLayer() = default;
KARMPCollisionLayer::KARMPCollisionLayer(const KARMPCollisionLayer& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPCollisionLayer::~KARMPCollisionLayer() = default;

KARStatus KARMPCollisionLayer::RemoveParent()
{
    return KARSuccess;
}
