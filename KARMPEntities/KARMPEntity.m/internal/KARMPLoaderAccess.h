// How every class fetches its typed loader.
#pragma once

#include "KARIMPEntityLoader.h"
#include "KARMPEntity.h"
#include "KARMPFailedCheck.h"

namespace karmp {

/// Gives an entity's loader as a loader interface. A failing fetch is a failed check and a
/// failure; without a loader, or with one of another interface, the result is 0 with null.
template <class Loader>
KARStatus FetchLoader(const KARMPEntity& entity, Loader*& loader,
                      KARMPSourceLocation where = KARMPSourceLocation::current())
{
    loader = nullptr;
    KARIMPEntityLoader* attached = nullptr;
    if (!KARMPVerify(!KARFailed(entity.GetLoader(attached)), where))
        return KARFailure;
    loader = dynamic_cast<Loader*>(attached);
    return KARSuccess;
}

/// Passes a change on to a loader: fetches it through the entity's typed GetLoader and returns what
/// `tell` returns with it, or 0 without one. A failing fetch is a failed check and a failure.
template <class Loader, class Entity, class Tell>
KARStatus TellLoader(const Entity& entity, Tell tell,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
{
    Loader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(entity.GetLoader(loader)), where))
        return KARFailure;
    return loader != nullptr ? tell(*loader) : KARSuccess;
}

/// The same for a change that the loader can refuse only: a negative status of `tell` is a failed
/// check and a failure, any other gives 0.
template <class Loader, class Entity, class Tell>
KARStatus PassToLoader(const Entity& entity, Tell tell,
                       KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const auto checked = [&](Loader& loader) {
        return KARMPVerify(!KARFailed(tell(loader)), where) ? KARSuccess : KARFailure;
    };
    return TellLoader<Loader>(entity, checked, where);
}

} // namespace karmp
