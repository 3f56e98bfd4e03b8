// What joints in space and in a plane do alike.
#pragma once

#include "KARMPBodyLinkList.h"
#include "KARMPFailedCheck.h"
#include "KARMPUnlinkAll.h"

#include <cstddef>
#include <vector>

namespace karmp {

/// Gives what `ask` returns with a joint's loader, which is fetched through the joint's typed
/// GetLoader; 1 without one. A failing fetch is a failed check and a failure.
template <class Loader, class Joint, class Ask>
KARStatus AskJointLoader(const Joint& joint, Ask ask,
                         KARMPSourceLocation where = KARMPSourceLocation::current())
{
    Loader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(joint.GetLoader(loader)), where))
        return KARFailure;
    return loader != nullptr ? ask(*loader) : KARUnchanged;
}

/// Gives one of a joint's frames by its index from 0; a failure, with the argument left alone,
/// outside of them.
template <class Axis>
KARStatus FrameAt(const std::vector<Axis>& frames, int index, Axis& frame)
{
    if (index < 0 || static_cast<std::size_t>(index) >= frames.size())
        return KARFailure;
    frame = frames[static_cast<std::size_t>(index)];
    return KARSuccess;
}

/// Takes a joint out of its constraints, then out of its bodies; the first failure ends the walk
/// and is the result, otherwise it is the last status.
template <class Joint, class Body>
KARStatus UnlinkJoint(const QOBSharedHandle<Joint>& joint,
                      const KARMPLinkList<KARMPConstraint>& constraints,
                      const KARMPBodyLinkList<Body>& bodies,
                      KARMPSourceLocation where = KARMPSourceLocation::current())
{
    KARStatus last = KARSuccess;
    const auto unlink = [&](auto& entry) { return last = entry.RemoveJoint(joint); };
    KARStatus status = UnlinkAll(constraints, unlink, where);
    if (!KARFailed(status))
        status = UnlinkAll(bodies.Bodies(), unlink, where);
    return KARFailed(status) ? status : last;
}

} // namespace karmp
