// A named value of the element tree in plain form, as an element or an attribute has it.
#pragma once

#include "KARPlatformExport.h"

#include <cstdint>
#include <string>

/// One value of any kind; only the field that belongs to the variable's type has a meaning.
struct KARMPSerializationVariant
{
    std::uint64_t reserved = 0;
    bool boolValue = false;
    std::int32_t intValue = -1;
    double doubleValue = -1.0;
    std::wstring stringValue;
};

/// A name with a value of one kind.
struct KARMPSerializationVariable
{
    /// The kind of a value: single bits, so that several make a mask.
    enum Type : std::int32_t { None = 0, Bool = 1, Int = 2, Double = 4, String = 8 };

    std::wstring name;
    Type type = None;
    KARMPSerializationVariant value;
};
