// The indices of the six freedoms of a frame: 0 to 2 along its axes, 3 to 5 about them.
#pragma once

namespace karmp {

inline constexpr unsigned int Freedoms = 6;

/// True for the index of a freedom. It is compared as unsigned, so that a negative one lies above
/// the range.
constexpr bool IsFreedom(int index)
{
    return static_cast<unsigned int>(index) < Freedoms;
}

} // namespace karmp
