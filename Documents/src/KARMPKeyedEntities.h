// Entities of two worlds in groups of one key.
#pragma once

#include "KARMPWorldGraph.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <vector>

namespace karmp::documents {

/// An entity with a number by which it is compared with others.
struct Keyed
{
    std::uint64_t key;
    EntityNumber number;

    bool operator==(const Keyed&) const = default;
    bool operator<(const Keyed& other) const
    {
        return std::tie(key, number) < std::tie(other.key, other.number);
    }
};
using KeyedEntities = std::vector<Keyed>;

/// Sorts entities by key and number, each once.
inline void Arrange(KeyedEntities& entities)
{
    std::sort(entities.begin(), entities.end());
    entities.erase(std::unique(entities.begin(), entities.end()), entities.end());
}

/// Calls `visit` with the entities of both lists that have one key, for each key that stands in
/// both. The lists are in order.
template <class Visit>
void ForEachGroup(const KeyedEntities& before, const KeyedEntities& after, Visit visit)
{
    const auto endOf = [](const KeyedEntities& list, std::size_t begin) {
        std::size_t end = begin;
        while (end < list.size() && list[end].key == list[begin].key)
            ++end;
        return end;
    };
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < before.size() && j < after.size()) {
        if (before[i].key == after[j].key) {
            const std::size_t iEnd = endOf(before, i);
            const std::size_t jEnd = endOf(after, j);
            visit(std::span(before).subspan(i, iEnd - i), std::span(after).subspan(j, jEnd - j));
            i = iEnd;
            j = jEnd;
        } else {
            ++(before[i].key < after[j].key ? i : j);
        }
    }
}

} // namespace karmp::documents
