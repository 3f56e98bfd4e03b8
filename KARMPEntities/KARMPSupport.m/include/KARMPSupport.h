#pragma once

#include "KARMPEntity.h"

/// Tie of an attribute to another entity, its target: the place where a parameter acts, for
/// instance, or that a result is about.
class KARMP_API KARMPSupport : public KARMPEntity
{
    KARMP_ENTITY(KARMPSupport, KARMPEntity)

public:
    /// Writes "Support" with the target, if there is one. A null serializer, an element that cannot
    /// be added and a failing base are a failed check and a failure. A support that "Output" owns
    /// is not written, with 0, unless "MOT_DUMP_OUTPUTS" is set.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner; an element without a target leaves the target as it is.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores the target, or none when the handle is null; always 0.
    KARStatus SetTarget(const QOBSharedHandle<KARMPEntity>& target)
    {
        return m_target.Assign(target);
    }
    /// Gives the target. Without one a null handle and a failure, without a report.
    KARStatus GetTarget(QOBSharedHandle<KARMPEntity>& target) const { return m_target.Get(target); }
    /// Stores the word that says who owns the support. "Output" marks the support of a result.
    void SetOwner(const KARString& owner) { m_owner = owner; }

protected:
    /// Drops the target.
    void ClearContainers() override;

    KARMPSupport();
    /// A copy takes the owner; it has no target.
    KARMPSupport(const KARMPSupport& source, CopyMode mode);
    ~KARMPSupport() override;

private:
    bool IsLeftOut() const;

    KARMPLink<KARMPEntity> m_target;
    KARString m_owner;
};
