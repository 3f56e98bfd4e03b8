#pragma once

#include "QOBSharedObject.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace karmp {

/// The order of objects in memory.
///
/// Objects that are listed at random, and all that they are linked to, lie anywhere for a walk over
/// the list: each is a miss of the caches. A filtered clone of 10,000 to 100,000 bodies that are
/// listed at random takes half the time when it visits them in this order instead.
class AddressOrder
{
public:
    using Objects = std::span<const QOBSharedObject* const>;
    using Indexes = std::vector<std::uint32_t>;

    /// Fewer objects than these stay in the caches.
    static constexpr std::size_t Few = 2'000;

    /// The indexes of objects in the order of their addresses. Empty when the objects are few, or
    /// listed in about that order.
    static Indexes Of(Objects objects);
};

} // namespace karmp
