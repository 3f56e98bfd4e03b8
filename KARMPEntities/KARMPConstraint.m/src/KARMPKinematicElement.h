// How the constraints that stand for joints write and read their class elements: the base's
// content, then friction parameters. Whatever fails, the status is KARUnexpected.
#pragma once

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPKinematicConstraint.h"

#include <cstddef>
#include <span>

namespace karmp {

/// A friction parameter: its element's name and its place among the class's parameters. The order
/// of the elements is not that of the parameters.
struct FrictionItem
{
    std::wstring_view name;
    std::size_t place;
};

/// The parameters that all classes with friction begin with, in the order of their elements.
inline constexpr FrictionItem StaticFriction{L"StaticFriction", 0};
inline constexpr FrictionItem DynamicFriction{L"DynamicFriction", 2};
inline constexpr FrictionItem StaticSpeedLimit{L"StaticSpeedLimit", 1};
inline constexpr FrictionItem DynamicSpeedLimit{L"DynamicSpeedLimit", 3};

inline constexpr std::wstring_view FrictionName = L"FrictionParameters";

/// What a class that stands for a joint returns.
inline KARStatus KinematicStatus(KARStatus status)
{
    return KARFailed(status) ? KARUnexpected : status;
}

/// Adds the friction parameters while friction is enabled.
inline void WriteFriction(ElementWriter& element, const KARMPKinematicConstraint& constraint,
                          std::span<const FrictionItem> items, const double* values,
                          KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (items.empty() || !constraint.IsFrictionEnabled())
        return;
    ElementWriter container = element.Child(FrictionName, where);
    for (const FrictionItem& item : items)
        container.Value(item.name, values[item.place], where);
    if (KARFailed(container.Status()))
        element.Fail();
}

/// Reads the friction parameters and enables friction when there are any; one that is missing keeps
/// its value.
inline void ReadFriction(ElementReader& element, KARMPKinematicConstraint& constraint,
                         std::span<const FrictionItem> items, double* values)
{
    if (items.empty())
        return;
    ElementReader container = element.Child(FrictionName, Absent::Keep);
    if (!container)
        return;
    constraint.EnableFriction();
    for (const FrictionItem& item : items)
        container.Value(item.name, values[item.place], Absent::Keep);
}

/// Writes a class element with the base's content and the friction parameters.
inline KARStatus WriteKinematic(const KARMPKinematicConstraint& constraint,
                                KARMPSerializer* serializer,
                                std::span<const FrictionItem> items = {},
                                const double* values = nullptr,
                                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementWriter element(serializer, constraint.getClassSerializeID_(), where);
    if (element &&
        element.Base(constraint.KARMPKinematicConstraint::Serialize(element.Node()), where))
        WriteFriction(element, constraint, items, values, where);
    return KinematicStatus(element.Status());
}

/// Reads a class element with the base's content and the friction parameters.
inline KARStatus ReadKinematic(KARMPKinematicConstraint& constraint,
                               const KARMPDeserializer* deserializer,
                               const KARMPEntityTable& entities,
                               std::span<const FrictionItem> items = {}, double* values = nullptr,
                               KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementReader element(deserializer, constraint.getClassSerializeID_(), where);
    if (element &&
        element.Base(constraint.KARMPKinematicConstraint::Deserialize(element.Node(), entities),
                     where))
        ReadFriction(element, constraint, items, values);
    return KinematicStatus(element.Status());
}

} // namespace karmp
