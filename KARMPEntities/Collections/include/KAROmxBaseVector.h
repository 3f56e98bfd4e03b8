#pragma once

#include "KARBaseUnknown.h"
#include "KARBaseUnknown_var.h"

#include <cstddef>
#include <vector>

/// A vector of counted pointers to interface roots, with one reference held on each. Null pointers
/// are kept as they are.
class KAROmxBaseVector
{
public:
    /// Gives the number of entries.
    int Size() const { return static_cast<int>(m_entries.size()); }
    /// Adds an object at the end and takes a reference on it.
    void _Append(IUnknown* object) { m_entries.emplace_back(object); }
    /// Gives the object at a position from 1 to Size, without a reference for the caller; null
    /// outside.
    IUnknown* _GetItem(int position) const
    {
        const bool held = position >= 1 && static_cast<std::size_t>(position) <= m_entries.size();
        return held ? m_entries[static_cast<std::size_t>(position) - 1].Get() : nullptr;
    }
    /// Empties the vector and gives up its references.
    void RemoveAll() { m_entries.clear(); }

private:
    std::vector<KARBaseUnknown_var> m_entries;
};
