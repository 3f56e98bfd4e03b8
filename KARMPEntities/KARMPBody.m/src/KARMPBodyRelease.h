// How a body that dies lets go of other bodies.
#pragma once

#include "KARMPBody.h"

#include <vector>

namespace karmp {

/// Collects the bodies that a dying body refers to, so that the last references to a long row of
/// bodies do not die inside each other: the first body of the row releases all of them, one after
/// the other, when its collection ends.
class BodyRelease
{
public:
    BodyRelease();
    ~BodyRelease();
    BodyRelease(const BodyRelease&) = delete;
    BodyRelease& operator=(const BodyRelease&) = delete;

    void Take(const QOBSharedHandle<KARMPBody>& body);
    /// Takes the entries of a list, the last one first. What cannot be taken for want of memory
    /// dies with the list.
    template <class Body>
    void Take(const KARMPLinkList<Body>& bodies)
    {
        for (int index = bodies.Count(); index > 0; --index)
            Take(bodies.At(index - 1));
    }

private:
    std::vector<QOBSharedHandle<KARMPBody>> m_own;
    bool m_first;
};

} // namespace karmp
