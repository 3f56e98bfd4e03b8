// How a constraint's setter stores an option and tells the loader of it.
#pragma once

#include "KARMPLoaderAccess.h"

namespace karmp {

/// Stores an option, whatever becomes of the rest, then passes it on to the loader and returns what
/// that answers; 0 without a loader. A failing GetLoader is a failed check and a failure.
template <class Loader, class Constraint, class Enum>
KARStatus StoreAndTell(Constraint& constraint, Enum& field, Enum value,
                       KARStatus (Loader::*set)(int),
                       KARMPSourceLocation where = KARMPSourceLocation::current())
{
    field = value;
    return TellLoader<Loader>(
        constraint, [&](Loader& loader) { return (loader.*set)(value); }, where);
}

} // namespace karmp
