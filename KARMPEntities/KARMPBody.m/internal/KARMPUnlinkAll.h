// How an entity takes itself out of those that list it.
#pragma once

#include "KARMPFailedCheck.h"
#include "KARMPLinkList.h"

namespace karmp {

/// Calls `unlink` with each entry in order. The walk ends at the first negative status, which is
/// the result; an empty entry is a failed check and counts as a failure.
template <class T, class Unlink>
KARStatus UnlinkAll(const KARMPLinkList<T>& list, Unlink unlink,
                    KARMPSourceLocation where = KARMPSourceLocation::current())
{
    for (int index = 0; index < list.Count(); ++index) {
        const QOBSharedHandle<T> entry = list.At(index);
        const KARStatus status =
            KARMPVerify(static_cast<bool>(entry), where) ? unlink(*entry) : KARFailure;
        if (KARFailed(status))
            return status;
    }
    return KARSuccess;
}

} // namespace karmp
