// Where an operation stands in the table of virtual operations.
#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#if defined(__GNUC__)

/// Index of a virtual operation in its class's table, by the layout of member pointers in the
/// Itanium C++ ABI: their first word is one more than the offset in the table, in bytes. For
/// classes with one base each.
template <class Operation>
std::size_t VirtualSlot(Operation operation)
{
    static_assert(sizeof operation == 2 * sizeof(std::size_t));
    std::size_t word = 0;
    std::memcpy(&word, &operation, sizeof word);
    return (word - 1) / sizeof(void*);
}

using VirtualSlots = std::vector<std::size_t>;

/// Expects that slots follow each other from an index on.
inline void ExpectSlotsFrom(std::size_t first, const VirtualSlots& slots)
{
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], first + i) << "operation " << i << " of the list";
}
/// Expects that slots follow each other behind another one.
inline void ExpectSlotsBehind(std::size_t last, const VirtualSlots& slots)
{
    ExpectSlotsFrom(last + 1, slots);
}

#endif
