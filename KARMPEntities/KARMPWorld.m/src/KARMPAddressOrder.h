#pragma once

#include "KARMPEntity.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace karmp {

class RegistryWalk;

/// The order of objects in memory.
///
/// Objects that are listed at random, and all that they are linked to, lie anywhere for a walk over
/// the list: each is a miss of the caches. A filtered clone of 10,000 to 100,000 bodies that are
/// listed at random takes half the time when it visits them in this order instead.
class AddressOrder
{
public:
    /// An object of a group, and where it is listed.
    struct Entry
    {
        const QOBSharedObject* object;
        std::uint32_t index;
        std::uint32_t group; // below MostGroups
    };
    static constexpr std::uint32_t MostGroups = 64;

    /// True when the first of many objects are listed in quite another order than that of their
    /// addresses. Fewer than some thousands stay in the caches.
    static bool AreApart(const QOBSharedList<KARMPEntity>& objects);
    static bool AreApart(std::span<const RegistryWalk> registries);
    /// Sorts objects by their groups, and by their addresses within a group.
    static void Sort(std::vector<Entry>& entries);
};

} // namespace karmp
