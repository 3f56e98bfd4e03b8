#include "KARMPCollisionInterLayer.h"

#include "KARMPCollisionLayer.h"
#include "KARMPContactCoefficients.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPCollisionInterLayer, "F4084F29-1266-416C-8A95-2A098720FFF6");

template <>
struct karmp::ContentOf<KARMPCollisionInterLayer>
{
    using C = KARMPCollisionInterLayer;
    static constexpr auto List = Element(
        L"CollisionInterLayer", "Relates layers of entities that may collide.", LenientFrame,
        References<&C::GetCollidableCount, &C::GetCollidable, &C::AddCollidable>(
            L"CollisionLayers", L"CollisionLayer", "The layers that it relates: its collidables.")
            .Removing<&C::RemoveCollidable>(),
        ContactCoefficients<&C::m_restitution, &C::m_dynamicFriction, &C::m_staticFriction>());
};
KARMP_DEFINE_CONTENT(KARMPCollisionInterLayer);

KARMPCollisionInterLayer::KARMPCollisionInterLayer() = default;
KARMPCollisionInterLayer::KARMPCollisionInterLayer(const KARMPCollisionInterLayer& source,
                                                   CopyMode mode)
    : Super(source, mode),
      m_restitution(source.m_restitution),
      m_dynamicFriction(source.m_dynamicFriction),
      m_staticFriction(source.m_staticFriction)
{}
KARMPCollisionInterLayer::~KARMPCollisionInterLayer() = default;

KARStatus KARMPCollisionInterLayer::GetEntities(int index,
                                                QOBSharedVector<KARMPEntity>& entities) const
{
    QOBSharedHandle<KARMPEntity> collidable;
    if (KARFailed(GetCollidable(index, collidable)))
        return KARFailure;
    const QOBSharedHandle<KARMPCollisionLayer> layer(collidable);
    if (!KARMPVerify(static_cast<bool>(layer)))
        return KARFailure;
    const int count = layer->GetCollidableCount();
    for (int entry = 0; entry < count; ++entry) {
        QOBSharedHandle<KARMPEntity> entity;
        layer->GetCollidable(entry, entity);
        entities.push_back(entity);
    }
    return KARSuccess;
}

KARStatus KARMPCollisionInterLayer::SetRestitutionCoefficient(double coefficient)
{
    m_restitution = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionInterLayer::GetRestitutionCoefficient(double& coefficient) const
{
    coefficient = m_restitution;
    return KARSuccess;
}

KARStatus KARMPCollisionInterLayer::SetDynamicFrictionCoefficient(double coefficient)
{
    m_dynamicFriction = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionInterLayer::GetDynamicFrictionCoefficient(double& coefficient) const
{
    coefficient = m_dynamicFriction;
    return KARSuccess;
}

KARStatus KARMPCollisionInterLayer::SetStaticFrictionCoefficient(double coefficient)
{
    m_staticFriction = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionInterLayer::GetStaticFrictionCoefficient(double& coefficient) const
{
    coefficient = m_staticFriction;
    return KARSuccess;
}
