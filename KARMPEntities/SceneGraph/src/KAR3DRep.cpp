#include "KAR3DRep.h"

#include "KAR3DBagRep.h"
#include "KAR3DRepPointer.h"
#include "KARFinite.h"

#include <atomic>
#include <utility>

namespace {

std::atomic<int> aliveCount{0};

bool IsShare(double value)
{
    return value >= 0.0 && value <= 1.0;
}

} // namespace

KAR3DRep::KAR3DRep()
{
    aliveCount.fetch_add(1, std::memory_order_relaxed);
}

KAR3DRep::~KAR3DRep()
{
    while (m_links != nullptr)
        m_links->Point(nullptr);
    aliveCount.fetch_sub(1, std::memory_order_relaxed);
}

int KAR3DRep::GetAliveCount()
{
    return aliveCount.load(std::memory_order_relaxed);
}

KAR3DRep* KAR3DRep::Duplicate() const
{
    struct Pair
    {
        const KAR3DRep* source;
        KAR3DBagRep* bag;
    };
    KAR3DRepOwner<KAR3DRep> first;
    std::vector<Pair> open{{this, nullptr}};
    while (!open.empty()) {
        const Pair pair = open.back();
        open.pop_back();
        KAR3DRepOwner<KAR3DRep> copy(pair.source->CopyAlone());
        copy->m_transformation = pair.source->m_transformation;
        copy->m_colour = pair.source->m_colour;
        if (pair.source->GetKind() == KAR3DRepKind::Bag) {
            const auto& children = static_cast<const KAR3DBagRep*>(pair.source)->m_children;
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                open.push_back({*child, static_cast<KAR3DBagRep*>(copy.get())});
        }
        if (pair.bag == nullptr) {
            first = std::move(copy);
        } else {
            pair.bag->AddChild(copy.get());
            static_cast<void>(copy.release()); // the bag's now
        }
    }
    return first.release();
}

// Frees the innermost nodes first, with neither a recursion nor an allocation.
void KAR3DRep::Destroy()
{
    if (m_bag != nullptr)
        m_bag->RemoveChild(this);
    KAR3DRep* rep = this;
    while (rep != nullptr) {
        if (rep->GetKind() == KAR3DRepKind::Bag) {
            const auto& children = static_cast<KAR3DBagRep*>(rep)->m_children;
            if (!children.empty()) {
                rep = children.back();
                continue;
            }
        }
        KAR3DBagRep* const bag = rep->m_bag;
        if (bag != nullptr)
            bag->m_children.pop_back();
        delete rep;
        rep = bag;
    }
}

bool KAR3DRep::IsWithin(const KAR3DRep& other) const
{
    const KAR3DRep* rep = this;
    while (rep != nullptr && rep != &other)
        rep = rep->m_bag;
    return rep != nullptr;
}

KARStatus KAR3DRep::SetTransformation(const KARMathTransformation& transformation)
{
    if (!kar::IsFinite(transformation))
        return KARFailure;
    m_transformation = transformation;
    return KARSuccess;
}

KARStatus KAR3DRep::SetColour(const std::optional<KARColour>& colour)
{
    if (colour && !(IsShare(colour->red) && IsShare(colour->green) && IsShare(colour->blue) &&
                    IsShare(colour->opacity)))
        return KARFailure;
    m_colour = colour;
    return KARSuccess;
}

void kar::RepLink::Point(KAR3DRep* rep)
{
    if (m_rep != nullptr) {
        (m_previous != nullptr ? m_previous->m_next : m_rep->m_links) = m_next;
        if (m_next != nullptr)
            m_next->m_previous = m_previous;
    }
    m_rep = rep;
    m_previous = nullptr;
    m_next = nullptr;
    if (rep == nullptr)
        return;
    m_next = rep->m_links;
    if (m_next != nullptr)
        m_next->m_previous = this;
    rep->m_links = this;
}
