#pragma once

#include "KARPlatformExport.h"

#include <cstddef>
#include <vector>

/// Growable array of integers in which the equation library returns equation ids.
class KARCDSIntArray
{
public:
    /// Number of integers held.
    int Size() const { return static_cast<int>(m_values.size()); }

    /// Adds an integer behind the last.
    void Append(int value) { m_values.push_back(value); }

    /// Empties the array.
    void RemoveAll() { m_values.clear(); }

    /// The integer at an index from 0; throws `std::out_of_range` outside of the array.
    int operator[](int index) const { return m_values.at(static_cast<std::size_t>(index)); }

    /// The integer at an index from 0, to be changed; throws `std::out_of_range` likewise.
    int& operator[](int index) { return m_values.at(static_cast<std::size_t>(index)); }

private:
    std::vector<int> m_values;
};
