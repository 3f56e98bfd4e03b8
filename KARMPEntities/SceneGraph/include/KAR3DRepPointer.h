#pragma once

#include "KAR3DRep.h"

namespace kar {

/// A pointer to a node that becomes null when the node is destroyed. The node knows all of them;
/// they cost no allocation.
class KAR_API RepLink
{
protected:
    RepLink() = default;
    explicit RepLink(KAR3DRep* rep) { Point(rep); }
    ~RepLink() { Point(nullptr); }
    void Point(KAR3DRep* rep);
    KAR3DRep* Target() const { return m_rep; }

public:
    RepLink(const RepLink&) = delete;
    RepLink& operator=(const RepLink&) = delete;

private:
    friend class ::KAR3DRep;

    KAR3DRep* m_rep = nullptr;
    RepLink* m_previous = nullptr;
    RepLink* m_next = nullptr;
};

} // namespace kar

/// Points to a node that somebody else may destroy, and is null from then on.
template <class Rep>
class KAR3DRepPointer : private kar::RepLink
{
public:
    KAR3DRepPointer() = default;
    /// Refers to a representation; null for none.
    explicit KAR3DRepPointer(Rep* rep) : RepLink(rep) {}
    KAR3DRepPointer& operator=(Rep* rep)
    {
        Point(rep);
        return *this;
    }
    /// The representation, or null.
    Rep* Get() const { return static_cast<Rep*>(Target()); }
    Rep* operator->() const { return Get(); }
    explicit operator bool() const { return Get() != nullptr; }
};
