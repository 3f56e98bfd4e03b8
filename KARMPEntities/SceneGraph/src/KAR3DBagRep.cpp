#include "KAR3DBagRep.h"

#include <algorithm>

KAR3DBagRep::KAR3DBagRep() = default;
KAR3DBagRep::~KAR3DBagRep() = default;

KAR3DBagRep* KAR3DBagRep::CreateRep()
{
    return new KAR3DBagRep;
}

KAR3DRep* KAR3DBagRep::CopyAlone() const
{
    return CreateRep();
}

bool KAR3DBagRep::IsHeldBy(const KAR3DRep& rep) const
{
    // Asked first: a copy adds each node before it has children, however deep it stands.
    const bool holdsNone = rep.GetKind() != KAR3DRepKind::Bag ||
                           static_cast<const KAR3DBagRep&>(rep).m_children.empty();
    return holdsNone ? this == &rep : IsWithin(rep);
}

KARStatus KAR3DBagRep::AddChild(KAR3DRep* child)
{
    if (child == nullptr || IsHeldBy(*child))
        return KARFailure;
    KAR3DBagRep* const former = child->m_bag;
    if (former == this)
        return KARUnchanged;
    m_children.push_back(child);
    if (former != nullptr)
        former->RemoveChild(child);
    child->m_bag = this;
    return KARSuccess;
}

KARStatus KAR3DBagRep::RemoveChild(KAR3DRep* child)
{
    if (child == nullptr || child->m_bag != this)
        return KARUnchanged;
    // From the end: what is given back first is mostly what came last.
    const auto found = std::find(m_children.rbegin(), m_children.rend(), child);
    m_children.erase(std::next(found).base());
    child->m_bag = nullptr;
    return KARSuccess;
}
