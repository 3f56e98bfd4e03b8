// The coefficients that rules and inter-layers have in common.
#pragma once

#include "KARMPContent.h"

namespace karmp {

/// The three coefficients of a contact, by the ways to them.
template <auto Restitution, auto DynamicFriction, auto StaticFriction>
constexpr auto ContactCoefficients()
{
    return List(Number<Restitution>(L"Restitution",
                                    "How much of the speed of approach remains after a contact."),
                Number<DynamicFriction>(L"DynamicFriction", "The friction coefficient of sliding."),
                Number<StaticFriction>(L"StaticFriction", "The friction coefficient at rest."));
}

} // namespace karmp
