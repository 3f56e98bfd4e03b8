#include "KARMPInteraction.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPInteraction, "BCA864C9-2331-46F5-B1F1-A18363EE9CDF");

template <>
struct karmp::ContentOf<KARMPInteraction>
{
    using C = KARMPInteraction;
    static constexpr auto List =
        Base("Which entities may collide, and how.", LenientFrame,
             References<&C::GetCollidableCount, &C::GetCollidable, &C::AddCollidable>(
                 L"Collidables", L"Collidable", "The entities that it is about.")
                 .Removing<&C::RemoveCollidable>(),
             Word<&C::m_ruleType>(L"RuleType", "What becomes of the entities when they touch."));
};
KARMP_DEFINE_CONTENT(KARMPInteraction);

KARMPInteraction::KARMPInteraction() = default;
KARMPInteraction::KARMPInteraction(const KARMPInteraction& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPInteraction::~KARMPInteraction() = default;

void KARMPInteraction::ClearContainers() {}

// The walk over the list ends at its first entry, with a failure whatever that is.
KARStatus KARMPInteraction::RemoveParent()
{
    if (GetCollidableCount() == 0)
        return KARSuccess;
    QOBSharedHandle<KARMPEntity> first;
    m_collidables.Get(0, first);
    KARMPVerify(static_cast<bool>(first));
    return KARFailure;
}

KARStatus KARMPInteraction::GetEntities(int index, QOBSharedVector<KARMPEntity>& entities) const
{
    QOBSharedHandle<KARMPEntity> collidable;
    if (KARFailed(GetCollidable(index, collidable)))
        return KARFailure;
    entities.push_back(collidable);
    return KARSuccess;
}

bool KARMPInteraction::FindCollidable(const QOBSharedHandle<KARMPEntity>& collidable,
                                      ConstCollidableIterator& position) const
{
    position = {m_collidables, m_collidables.Find(collidable)};
    return position.Index() != GetCollidableCount();
}

bool KARMPInteraction::FindCollidable(const QOBSharedHandle<KARMPEntity>& collidable,
                                      CollidableIterator& position)
{
    position = {m_collidables, m_collidables.Find(collidable)};
    return position.Index() != GetCollidableCount();
}

KARStatus KARMPInteraction::SetRuleType(KARMPCollisionRuleType::Enum ruleType)
{
    m_ruleType = ruleType;
    return KARSuccess;
}
