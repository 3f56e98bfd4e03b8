// The family to which a class of entities belongs.
#pragma once

#include "KARMPFamilies.h"

#include <type_traits>

namespace karmp::model::families {

/// The index of the family that T belongs to, -1 for a base of several.
template <class T, class... F>
constexpr int IndexOf(FamilyList<F...>)
{
    int index = -1;
    int next = 0;
    ((index = index < 0 && std::is_base_of_v<F, T> ? next : index, ++next), ...);
    return index;
}

/// True for the class that a family is named after.
template <class T, class... F>
constexpr bool Contain(FamilyList<F...>)
{
    return (std::is_same_v<F, T> || ...);
}

} // namespace karmp::model::families
