#pragma once

#include "KARPlatformExport.h"

#include <map>
#include <utility>

/// An ordered map: values by key, in ascending order of the keys.
template <typename K, typename V>
class KAROmxOMap
{
public:
    /// Stores a value under a key and tells whether the key is new. The value of a key that is
    /// there already is replaced.
    bool Insert(K key, V value)
    {
        return m_entries.insert_or_assign(std::move(key), std::move(value)).second;
    }
    /// Gives the value of a key, or null; valid until the key is removed.
    const V* Locate(const K& key) const
    {
        const auto entry = m_entries.find(key);
        return entry == m_entries.end() ? nullptr : &entry->second;
    }
    /// Gives the value of a key, to be changed, or null; valid until the key is removed.
    V* Locate(const K& key) { return const_cast<V*>(std::as_const(*this).Locate(key)); }
    /// Removes a key and tells whether it was there.
    bool Remove(const K& key) { return m_entries.erase(key) != 0; }
    /// Empties the map.
    void RemoveAll() { m_entries.clear(); }
    /// Gives the number of keys.
    int Size() const { return static_cast<int>(m_entries.size()); }

    /// The entries in the order of their keys, for loops.
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }

private:
    std::map<K, V> m_entries;
};

/// Walks a map in the order of its keys: `KAROmxBaseMapIter i(map); while (i.Next()) ...`. The map
/// must outlive it, and the entry it stands on must not be removed.
template <typename K, typename V>
class KAROmxBaseMapIter
{
public:
    /// Stands before the first entry.
    explicit KAROmxBaseMapIter(const KAROmxOMap<K, V>& map) : m_map(&map), m_entry(map.end()) {}

    /// Goes to the next entry and tells whether there is one. Once it has told no, it stays there.
    bool Next()
    {
        if (!m_started) {
            m_started = true;
            m_entry = m_map->begin();
        } else if (m_entry != m_map->end()) {
            ++m_entry;
        }
        return m_entry != m_map->end();
    }
    /// Gives the key of the entry; a default key when it stands on none.
    const K& _Key() const
    {
        static const K absent{};
        return m_entry == m_map->end() ? absent : m_entry->first;
    }
    /// Gives the value of the entry; a default value when it stands on none.
    const V& _Value() const
    {
        static const V absent{};
        return m_entry == m_map->end() ? absent : m_entry->second;
    }

private:
    const KAROmxOMap<K, V>* m_map;
    typename std::map<K, V>::const_iterator m_entry;
    bool m_started = false;
};
