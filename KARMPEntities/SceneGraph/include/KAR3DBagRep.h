#pragma once

#include "KAR3DRep.h"

#include <vector>

/// A node that holds others, in the order in which they were added, and destroys them with itself.
class KAR_API KAR3DBagRep final : public KAR3DRep
{
public:
    /// Makes an empty bag, which is the caller's.
    static KAR3DBagRep* CreateRep();

    /// Bag.
    KAR3DRepKind GetKind() const override { return KAR3DRepKind::Bag; }
    /// Takes a node over, out of the bag that it was in. KARFailure when it is null, this bag or
    /// one that holds it; KARUnchanged when it is in this bag already.
    KARStatus AddChild(KAR3DRep* child);
    /// Gives a node back to the caller. KARUnchanged when it is not in this bag.
    KARStatus RemoveChild(KAR3DRep* child);
    /// The nodes in the bag.
    const std::vector<KAR3DRep*>& GetChildren() const { return m_children; }

private:
    friend class KAR3DRep;

    KAR3DBagRep();
    ~KAR3DBagRep() override;
    KAR3DRep* CopyAlone() const override;
    bool IsHeldBy(const KAR3DRep& rep) const;

    std::vector<KAR3DRep*> m_children;
};
