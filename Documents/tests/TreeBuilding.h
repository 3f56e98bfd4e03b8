// How tests add elements to a tree of writer nodes.
#pragma once

#include "KARMPSerializer.h"

#include <string_view>

inline KARMPSerializer* Add(KARMPSerializer& parent, std::wstring_view name)
{
    KARMPSerializer* child = nullptr;
    parent.AddElement(name, child);
    return child;
}

template <class Value>
KARMPSerializer* Add(KARMPSerializer& parent, std::wstring_view name, const Value& value)
{
    KARMPSerializer* child = nullptr;
    parent.AddElement(name, child, value);
    return child;
}
