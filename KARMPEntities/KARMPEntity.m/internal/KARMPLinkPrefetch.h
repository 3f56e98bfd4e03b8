#pragma once

#include "KARMPLink.h"
#include "KARPrefetch.h"

namespace karmp {

/// Prefetches the referents of links, for the destructor of an entity that has several values of
/// its own. They die with it one after the other, and in a large world each was last touched long
/// ago: this way the waits for their memory overlap.
template <class... T>
void PrefetchLinked(const KARMPLink<T>&... links)
{
    (kar::Prefetch(links.Handle()._getReferent(), kar::PrefetchedBytes), ...);
}

} // namespace karmp
