// The values of a force or torque by components.
#pragma once

#include "KARMPContentLinks.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPEntity.h"
#include "KARMPEntityServices.h"
#include "KARMPSerializationServices.h"
#include "KARMPValue.h"

#include <algorithm>
#include <array>
#include <utility>

namespace karmp {

template <std::size_t N>
using ValueComponents = std::array<QOBSharedHandle<KARMPValue>, N>;

template <std::size_t N>
bool AreAllSet(const ValueComponents<N>& values)
{
    return std::all_of(
        values.begin(), values.end(), [](const auto& value) { return static_cast<bool>(value); });
}

/// Makes a constant of each number in the world of the holder; whatever fails is a failed check.
template <std::size_t N>
ValueComponents<N> MakeConstants(const KARMPEntity& holder, const std::array<double, N>& numbers,
                                 KARMPPhysicalQuantity::Enum quantity,
                                 KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ValueComponents<N> made;
    for (std::size_t i = 0; i < N; ++i)
        KARMPVerify(!KARFailed(MakeConstant(&holder, numbers[i], quantity, made[i])), where);
    return made;
}

/// Reads the numbers of constants; any other value is a failed check, gives 0 for its component,
/// and makes the result a failure.
template <std::size_t N>
KARStatus ReadConstants(const ValueComponents<N>& values, std::array<double, N>& numbers,
                        KARMPSourceLocation where = KARMPSourceLocation::current())
{
    bool areRead = true;
    for (std::size_t i = 0; i < N; ++i)
        areRead = !KARFailed(ReadConstant(values[i], numbers[i])) && areRead;
    return KARMPVerify(areRead, where) ? KARSuccess : KARFailure;
}

/// Stores values where none of them is null; otherwise a failed check.
template <std::size_t N>
void StoreValues(const ValueComponents<N>& given, ValueComponents<N>& own,
                 KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (KARMPVerify(AreAllSet(given), where))
        own = given;
}

/// Adds an element with a reference to each value. With no value at all it stays empty; with only
/// some of them, the first that is missing ends the references with a failed check.
template <std::size_t N>
void WriteValues(ElementWriter& element, std::wstring_view name, const Names<N>& names,
                 const ValueComponents<N>& values,
                 KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const ElementWriter child = element.Child(name, where);
    if (!child || values == ValueComponents<N>())
        return;
    const KARStatus status = KARMPSerializationServices::Serialize(
        child.Node(), values.data(), static_cast<int>(N), {names.begin(), names.end()});
    KARMPVerify(!KARFailed(status), where);
}

/// Reads such an element and calls `set` with its values. A missing element and one without any of
/// the references do nothing; one that lacks some, and a failing `set`, are a failed check.
template <std::size_t N, class Set>
void ReadValues(ElementReader& element, std::wstring_view name, const Names<N>& names,
                const KARMPEntityTable& entities, Set set,
                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const ElementReader child = element.Child(name, Absent::Keep, where);
    if (std::none_of(names.begin(), names.end(), [&](auto part) { return child.Has(part); }))
        return;
    ValueComponents<N> values;
    const KARStatus status = KARMPSerializationServices::Deserialize(
        child.Node(), {names.begin(), names.end()}, entities, values.data());
    if (KARMPVerify(!KARFailed(status), where))
        ElementReader::Set(set(values), where);
}

template <auto Values, std::size_t N, std::size_t... Index>
constexpr auto DescribeValues(std::wstring_view name, const Names<N>& names, std::string_view says,
                              std::string_view component, Quantity quantity,
                              KARMPSourceLocation where, std::index_sequence<Index...>)
{
    return Group(
               name, says,
               ValueReference<At<Values, Index>, At<Values, Index>>(names[Index], component, where)
                   .Optional()
                   .In(quantity)...)
        .Optional();
}
/// Describes what WriteValues and ReadValues do with a member: the element and each component, of a
/// quantity.
template <auto Values, std::size_t N>
constexpr auto DescribeValues(std::wstring_view name, const Names<N>& names, std::string_view says,
                              std::string_view component, Quantity quantity,
                              KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return DescribeValues<Values>(name, names, says, component, quantity, where,
                                  std::make_index_sequence<N>());
}

} // namespace karmp
