// Where an operation stands in the table of virtual operations.
#pragma once

#include <cstddef>
#include <cstring>

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

#endif
