#pragma once

#include "KARIGMKObject.h"

#include <cstddef>
#include <vector>

/// A list of pointers to stored objects, as a stream saves and loads them; it counts no reference.
class KARListPtrKARIGMKObject
{
public:
    /// Appends an object; what is not a stored object is entered as null.
    void Append(KARBaseUnknown* object)
    {
        m_objects.push_back(KARSysDynamicCast<KARIGMKObject>(object));
    }
    /// Number of entries.
    int Size() const { return static_cast<int>(m_objects.size()); }
    /// The entry at a position that counts from 1; position 0 means the first entry too. Null
    /// outside the list.
    KARIGMKObject* operator[](int position) const
    {
        if (position < 0 || position > Size() || m_objects.empty())
            return nullptr;
        return m_objects[static_cast<std::size_t>(position == 0 ? 0 : position - 1)];
    }
    /// Empties the list.
    void RemoveAll() { m_objects.clear(); }

private:
    std::vector<KARIGMKObject*> m_objects;
};
