// The lookup of elements of a node's lists by name.
#pragma once

#include "KARMPArenaObject.h"
#include "KARMPNodeStorage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp {

/// A list of up to this many names is scanned; a longer one gets an index.
constexpr std::size_t LongestScan = 16;

/// The index of each name in a list; the names are views of the list's own texts.
///
/// Cost of              up to LongestScan names   more names
/// append               constant                  amortised constant, one entry of the hash table
/// find                 one comparison each       constant
/// memory               none                      about 60 bytes for each name
struct NameIndex : ArenaObject
{
    std::unordered_map<std::wstring_view, std::uint32_t> indices;
};

using OwnedIndex = OwningPointer<NameIndex>;

template <class T>
std::wstring_view NameOf(const T& element)
{
    return element.name.View();
}

/// True when the elements' names share their storage, are all different, and few: then they need
/// neither groups nor an index. For so few, comparing all pairs is faster than an index.
template <class T>
bool AreRecord(std::span<const T> elements)
{
    if (elements.size() > LongestScan)
        return false;
    const auto* const first = elements.data();
    const auto* const end = first + elements.size();
    for (const auto* element = first; element != end; ++element) {
        const NodeText& name = element->name;
        bool isNew = name.SharesStorage();
        for (const auto* former = first; former != element; ++former)
            isNew = isNew && !former->name.IsSameAs(name);
        if (!isNew)
            return false;
    }
    return true;
}

/// The element of a name in a list without an index, null when there is none.
template <class T>
const T* ScanNamed(const NodeArray<T>& list, std::wstring_view name)
{
    for (const T& element : list)
        if (SameName(NameOf(element), name))
            return &element;
    return nullptr;
}

/// The same in a list that may have an index.
template <class T>
const T* FindNamed(const NodeArray<T>& list, const NameIndex* index, std::wstring_view name)
{
    if (index == nullptr)
        return ScanNamed(list, name);
    const auto found = index->indices.find(name);
    return found != index->indices.end() ? &list[found->second] : nullptr;
}

/// Adds the name of the element that is appended to `list` next to the index, once the list is
/// long.
template <class T>
void IndexNext(OwnedIndex& index, const NodeArray<T>& list, std::wstring_view name,
               NodeMemory* memory)
{
    if (list.size() < LongestScan)
        return;
    if (!index) {
        OwnedIndex made = NewOwningIn<NameIndex>(memory);
        for (const T& element : list) {
            made->indices.emplace(NameOf(element),
                                  static_cast<std::uint32_t>(&element - list.begin()));
        }
        index = std::move(made);
    }
    index->indices.emplace(name, static_cast<std::uint32_t>(list.size()));
}

/// The elements of a list in the order of their names.
template <class T>
std::vector<const T*> ByName(const NodeArray<T>& list)
{
    std::vector<const T*> sorted;
    sorted.reserve(list.size());
    for (const T& element : list)
        sorted.push_back(&element);
    std::sort(sorted.begin(), sorted.end(),
              [](const T* left, const T* right) { return NameOf(*left) < NameOf(*right); });
    return sorted;
}

} // namespace karmp
