// The friction parameters in the content of a constraint that stands for a joint.
#pragma once

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPKinematicConstraint.h"

namespace karmp {

/// The parameters of a class: the four that all have, then its reference lengths. Parameters is the
/// array of all of them, whose order is not that of the elements. They are written while friction
/// is enabled, and reading them enables it. Reports name the line of the first length.
template <auto Parameters, std::size_t... N>
constexpr auto Friction(const ItemList<N>&... lengths)
{
    using C = KARMPKinematicConstraint;
    constexpr Quantity None = KARMPPhysicalQuantity::NoPhysicalQuantity;
    constexpr Quantity Speed = KARMPPhysicalQuantity::Velocity;
    const Where where = List(lengths...).items[0].where;
    const auto parameters =
        List(Number<At<Parameters, 0>>(L"StaticFriction", "The coefficient of friction at rest.",
                                       None, where),
             Number<At<Parameters, 2>>(L"DynamicFriction", "The coefficient of friction in motion.",
                                       None, where),
             Number<At<Parameters, 1>>(L"StaticSpeedLimit", "The speed up to which it is at rest.",
                                       Speed, where),
             Number<At<Parameters, 3>>(L"DynamicSpeedLimit",
                                       "The speed from which on it is in motion.", Speed, where),
             lengths...);
    return Group(L"FrictionParameters",
                 "The parameters of the friction model; where they are, friction is enabled.",
                 parameters.Optional())
        .Optional()
        .Counting()
        .template When<&C::IsFrictionEnabled>()
        .template Through<&C::EnableFriction>();
}

/// A reference length of a class.
template <auto Parameters, std::size_t Index>
constexpr auto ReferenceLength(std::wstring_view name, std::string_view says,
                               Where where = Where::current())
{
    return Number<At<Parameters, Index>>(name, says, KARMPPhysicalQuantity::Length, where);
}

} // namespace karmp
