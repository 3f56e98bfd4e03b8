// What the kinds of geometry have in common in a document: "Coordinates" with a child element for
// each number. A missing number is reported and counts as 0.
#pragma once

#include "KARMPContentWalk.h"
#include "KARMPDirectionItem.h"
#include "KARMPFrames.h"

namespace karmp {

/// The numbers of a kind, in the axes of the geometry's body.
template <std::size_t... N>
constexpr auto Coordinates(const ItemList<N>&... numbers)
{
    return Group(L"Coordinates", "The numbers of the geometry, in the axes of its body.",
                 List(numbers...).ZeroIfMissing())
        .Required();
}

/// A point, a direction, a length.
template <auto Access>
constexpr auto PointOf(std::wstring_view name, const Names<3>& names, std::string_view says,
                       Where where = Where::current())
{
    return Numbers<Access>(name, names, says, KARMPPhysicalQuantity::Length, where);
}
template <auto Access>
constexpr auto DirectionOf(std::wstring_view name, const Names<3>& names, std::string_view says,
                           Where where = Where::current())
{
    return Numbers<Access>(name, names, says, KARMPPhysicalQuantity::NoPhysicalQuantity, where);
}
template <auto Access>
constexpr auto Length(std::wstring_view name, std::string_view says, Where where = Where::current())
{
    return Number<Access>(name, says, KARMPPhysicalQuantity::Length, where);
}

/// Centre, major direction and normal of a kind of conic section.
template <auto Center, auto MajorDirection, auto Normal>
constexpr auto ConicPlane(Where where = Where::current())
{
    return List(PointOf<Center>(L"Center", CentreNames, "The centre.", where),
                DirectionOf<MajorDirection>(L"MajorDirection", DirectionNames,
                                            "The direction of the major axis, a unit vector.",
                                            where),
                DirectionOf<Normal>(L"Normal", NormalNames,
                                    "The normal of the plane, a unit vector.", where));
}

} // namespace karmp
