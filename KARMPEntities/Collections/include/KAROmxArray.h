#pragma once

#include "KARPlatformExport.h"

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

/// Entries of one type in order, at positions that count from 1. Reading outside 1..Size gives a
/// default entry; what is written there is lost.
template <typename T>
class KAROmxArray
{
public:
    /// Makes an empty array.
    KAROmxArray() = default;
    /// Makes an array of the entries.
    KAROmxArray(std::initializer_list<T> entries) : m_entries(entries) {}

    /// Gives the number of entries.
    int Size() const { return static_cast<int>(m_entries.size()); }
    /// Adds an entry at the end.
    void Append(T entry) { m_entries.push_back(std::move(entry)); }
    /// Empties the array.
    void RemoveAll() { m_entries.clear(); }

    /// Gives the entry at a position from 1 to Size.
    const T& GetR(int position) const
    {
        static const T absent{};
        return Holds(position) ? m_entries[static_cast<std::size_t>(position) - 1] : absent;
    }
    /// Gives the entry at a position from 1 to Size.
    const T& operator[](int position) const { return GetR(position); }
    /// Gives the entry at a position from 1 to Size, to be changed.
    T& operator[](int position)
    {
        thread_local T absent{};
        if (Holds(position))
            return m_entries[static_cast<std::size_t>(position) - 1];
        absent = T{};
        return absent;
    }

    /// The entries in their order, for loops.
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }

    friend bool operator==(const KAROmxArray& left, const KAROmxArray& right) = default;

private:
    bool Holds(int position) const
    {
        return position >= 1 && static_cast<std::size_t>(position) <= m_entries.size();
    }

    std::vector<T> m_entries;
};
