// The slots in which sensors of freedoms hold what a solver found.
#pragma once

#include "KARStatus.h"

#include <array>
#include <cstddef>

namespace karmp {

/// Stores a value behind the `count` others; a failure when the slots are full.
template <class T, std::size_t N>
KARStatus AddToSlots(std::array<T, N>& slots, int& count, const T& value)
{
    if (count >= static_cast<int>(N))
        return KARFailure;
    slots[static_cast<std::size_t>(count++)] = value;
    return KARSuccess;
}

/// Gives one of the `count` values by its index; a failure, with the argument left alone, outside
/// of them.
template <class T, std::size_t N>
KARStatus GetFromSlots(const std::array<T, N>& slots, int count, int index, T& value)
{
    if (index < 0 || index >= count)
        return KARFailure;
    value = slots[static_cast<std::size_t>(index)];
    return KARSuccess;
}

} // namespace karmp
