#pragma once

#include "KARMPCollidableList.h"
#include "KARMPEntity.h"

/// Base of what tells a solver which entities may collide, and how: a list of collidable entities
/// and what becomes of them when they touch.
///
/// The list keeps its entities alive until the interaction is destroyed; the teardown of an
/// interaction takes nothing out of it. No entity knows the interactions that it is listed in.
class KARMP_API KARMPInteraction : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPInteraction, KARMPEntity)

public:
    using CollidableIterator = KARMPCollidablePosition<KARMPCollidableList>;
    using ConstCollidableIterator = KARMPCollidablePosition<const KARMPCollidableList>;

    /// Writes list and rule type into the concrete interaction's element. A null serializer or a
    /// failing base is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads list and rule type from the concrete interaction's element, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    /// Does nothing.
    void ClearContainers() override;
    /// A failure unless the list is empty; a null first entry is a failed check as well.
    KARStatus RemoveParent() override;

public:
    /// Gives the collidable at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetCollidable(int index, QOBSharedHandle<KARMPEntity>& collidable) const
    {
        return m_collidables.Get(index, collidable);
    }
    /// Replaces the collidable at an index by any handle, null included; outside the list a
    /// failure.
    virtual KARStatus SetCollidable(int index, const QOBSharedHandle<KARMPEntity>& collidable)
    {
        return m_collidables.Set(index, collidable);
    }
    /// Appends a collidable. A null handle is a failed check and a failure; an entity that is
    /// listed already gives 1.
    virtual KARStatus AddCollidable(const QOBSharedHandle<KARMPEntity>& collidable)
    {
        return m_collidables.Add(collidable);
    }
    /// Takes a collidable out. A null handle is a failed check and a failure; an entity that is not
    /// listed gives 1.
    virtual KARStatus RemoveCollidable(const QOBSharedHandle<KARMPEntity>& collidable)
    {
        return m_collidables.Remove(collidable);
    }
    /// Appends to the vector what the collidable at an index stands for: here the collidable
    /// itself. Outside the list a failure.
    virtual KARStatus GetEntities(int index, QOBSharedVector<KARMPEntity>& entities) const;

    /// How many collidables there are.
    int GetCollidableCount() const { return m_collidables.Count(); }
    /// Finds the first entry of an entity: true with its position, or false with the end.
    bool FindCollidable(const QOBSharedHandle<KARMPEntity>& collidable,
                        ConstCollidableIterator& position) const;
    bool FindCollidable(const QOBSharedHandle<KARMPEntity>& collidable,
                        CollidableIterator& position);

    /// What becomes of the collidables when they touch; CollisionReaction at first.
    KARMPCollisionRuleType::Enum GetRuleType() const { return m_ruleType; }
    KARStatus SetRuleType(KARMPCollisionRuleType::Enum ruleType);

protected:
    KARMPInteraction();
    /// A copy has no collidables and the rule type of a new interaction.
    KARMPInteraction(const KARMPInteraction& source, CopyMode mode);
    ~KARMPInteraction() override;

private:
    KARMPCollidableList m_collidables;
    KARMPCollisionRuleType::Enum m_ruleType = KARMPCollisionRuleType::CollisionReaction;
};
