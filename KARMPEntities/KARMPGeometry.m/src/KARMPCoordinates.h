// The form that all kinds of geometry share in the element tree: an element named for the kind,
// which holds the base's content and "Coordinates" with a child element for each number.
#pragma once

#include "KARMPDirectionOnRead.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

#include <array>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace karmp {

/// A point, a vector or a direction of a kind, with its three names.
template <class Value>
class Triple
{
public:
    Triple(const Names<3>& names, Value& value) : m_names(names), m_value(value) {}

    void Write(ElementWriter& coordinates, KARMPSourceLocation where) const
    {
        coordinates.Values(m_names, m_value, where);
    }
    /// A missing component is reported and counts as 0.
    void Read(ElementReader& coordinates, KARMPSourceLocation where) const
    {
        std::array<double, 3> read{};
        coordinates.Values(m_names, read, Absent::ReportAndKeep, where);
        if constexpr (std::is_same_v<Value, KARMathDirection>)
            m_value = DirectionOnRead(read[0], read[1], read[2]);
        else
            m_value = Value(read[0], read[1], read[2]);
    }

private:
    const Names<3>& m_names;
    Value& m_value;
};

/// A number of a kind, with its name.
template <class Value>
class Number
{
public:
    Number(std::wstring_view name, Value& value) : m_name(name), m_value(value) {}

    void Write(ElementWriter& coordinates, KARMPSourceLocation where) const
    {
        coordinates.Value(m_name, m_value, where);
    }
    /// A missing number is reported and counts as 0.
    void Read(ElementReader& coordinates, KARMPSourceLocation where) const
    {
        coordinates.Value(m_name, m_value, Absent::ReportAndZero, where);
    }

private:
    std::wstring_view m_name;
    Value& m_value;
};

/// Writes a kind: its element, what its base writes, and the values in order. A failed value is
/// reported and the next one is tried; a failure of anything above is reported and the result.
template <class Kind, class... Values>
KARStatus WriteKind(const Kind& kind, KARMPSerializer* serializer, std::wstring_view name,
                    const std::tuple<Values...>& values,
                    KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementWriter element(serializer, name, where);
    if (!element || !element.Base(kind.Kind::Super::Serialize(element.Node()), where))
        return KARFailure;
    ElementWriter coordinates = element.Child(L"Coordinates", where);
    if (!coordinates)
        return KARFailure;
    std::apply([&](const Values&... value) { (value.Write(coordinates, where), ...); }, values);
    return KARSuccess;
}

/// Reads a kind in the same manner. Values that were not read are as Triple and Number tell; when
/// the result is a failure, all values stay.
template <class Kind, class... Values>
KARStatus ReadKind(Kind& kind, const KARMPDeserializer* deserializer,
                   const KARMPEntityTable& entities, ItemName name,
                   const std::tuple<Values...>& values,
                   KARMPSourceLocation where = KARMPSourceLocation::current())
{
    ElementReader element(deserializer, name, where);
    if (!element || !element.Base(kind.Kind::Super::Deserialize(element.Node(), entities), where))
        return KARFailure;
    ElementReader coordinates = element.Child(L"Coordinates", Absent::ReportAndKeep, where);
    if (!coordinates)
        return KARFailure;
    std::apply([&](const Values&... value) { (value.Read(coordinates, where), ...); }, values);
    return KARSuccess;
}

} // namespace karmp
