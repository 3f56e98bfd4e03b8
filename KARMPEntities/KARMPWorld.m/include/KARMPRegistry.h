#pragma once

#include "KARBaseUnknown_var.h"
#include "KARMPExport.h"
#include "KARMPHandleSequence.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <map>
#include <span>
#include <unordered_map>
#include <utility>

namespace karmp {

/// The registry without the type of its entities.
class KARMP_API RegistryCore
{
public:
    /// Empty, or with the entities and keys of another one.
    RegistryCore();
    RegistryCore(const RegistryCore& source);
    RegistryCore& operator=(const RegistryCore&) = delete;
    ~RegistryCore();

    /// Lists an entity without keys or under two, as KARMPRegistry tells.
    KARStatus Add(const QOBSharedBase& entity);
    KARStatus Add(KARBaseUnknown* key1, KARBaseUnknown* key2, const QOBSharedBase& entity);
    /// Prepares for a number of entities more.
    void Reserve(std::size_t count) { m_entities.Reserve(m_entities.Count() + count); }
    /// Add for an entity that nobody else refers to, and so no registry lists.
    void AddNew(KARBaseUnknown* key1, KARBaseUnknown* key2, QOBSharedBase&& entity);
    KARStatus Remove(const QOBSharedBase& entity);
    std::size_t Count() const noexcept { return m_entities.Count(); }
    const QOBSharedBase& At(std::size_t index) const { return m_entities.At(index); }
    /// The entities from an index below Count() on that lie side by side, at least one.
    std::span<const QOBSharedBase> From(std::size_t index) const { return m_entities.From(index); }
    /// True when an entity has keys.
    bool HasKeys() const noexcept { return !m_keysByEntity.empty(); }
    /// The entities filed under a pair, null when there is none.
    const KARMPHandleSequence* Find(KARBaseUnknown* key1, KARBaseUnknown* key2) const;
    KARStatus GetKeys(const QOBSharedBase& entity, KARBaseUnknown_var& key1,
                      KARBaseUnknown_var& key2) const;
    void Empty();

private:
    using Keys = std::pair<KARBaseUnknown_var, KARBaseUnknown_var>;
    struct KeysOrder
    {
        bool operator()(const Keys& left, const Keys& right) const;
    };
    struct Hash
    {
        std::size_t operator()(const QOBSharedBase& entity) const noexcept;
    };

    static KARBaseUnknown_var Normalised(KARBaseUnknown* key);
    void FileUnderKeys(KARBaseUnknown* key1, KARBaseUnknown* key2, const QOBSharedBase& entity);
    KARStatus ForgetKeys(const QOBSharedBase& entity);

    KARMPHandleSequence m_entities;
    std::map<Keys, KARMPHandleSequence, KeysOrder> m_entitiesByKeys;
    std::unordered_map<QOBSharedBase, Keys, Hash> m_keysByEntity;
};

} // namespace karmp

/// The list of one family of entities in a world, with two tables of keys beside it.
///
/// A caller may file an entity under a pair of keys of its own and get it back by them. The
/// registry does not look inside an entity: it sets no link on it and clears none. Every operation
/// returns 0 where nothing else is said.
template <class T>
class KARMPRegistry
{
public:
    KARMPRegistry() = default;
    /// A copy lists the same entities under the same keys.
    KARMPRegistry(const KARMPRegistry&) = default;
    virtual ~KARMPRegistry() = default;

    /// Appends an entity without keys. A null handle, or an entity that is listed already, gives 1.
    KARStatus Add(QOBSharedHandle<T> entity) { return m_core.Add(entity); }
    /// Appends an entity and files it under two keys, either of which may be null; with two null
    /// keys it is the plain form. A null handle, or an entity that has keys already, gives 1. One
    /// that was added without keys is listed a second time.
    KARStatus Add(KARBaseUnknown_var& key1, KARBaseUnknown_var& key2, QOBSharedHandle<T> entity)
    {
        return m_core.Add(key1, key2, entity);
    }
    /// Removes the first entry of an entity from the list, and its keys; 1 when it is not listed.
    /// The entity can still be got by the keys that it had. A failure when it is not found under
    /// its own keys, which it then keeps.
    KARStatus Remove(QOBSharedHandle<T> entity) { return m_core.Remove(entity); }
    /// Number of entries.
    int Count() const { return static_cast<int>(m_core.Count()); }
    /// Gives the entry at an index from 0; outside the list a null handle and 1.
    KARStatus Get(int index, QOBSharedHandle<T>& entity) const
    {
        if (index < 0 || index >= Count()) {
            entity = nullptr;
            return KARUnchanged;
        }
        entity = QOBSharedHandle<T>::unchecked(m_core.At(static_cast<std::size_t>(index)));
        return KARSuccess;
    }
    /// Gives all entities that were filed under a pair of keys, in order of filing, those that
    /// were removed since included; an empty vector and 1 when nothing was filed under it.
    KARStatus Get(KARBaseUnknown_var& key1, KARBaseUnknown_var& key2,
                  QOBSharedVector<T>& entities) const
    {
        entities.clear();
        const KARMPHandleSequence* found = m_core.Find(key1, key2);
        if (found == nullptr)
            return KARUnchanged;
        entities.reserve(found->Count());
        for (std::size_t i = 0; i < found->Count(); ++i)
            entities.push_back(QOBSharedHandle<T>::unchecked(found->At(i)));
        return KARSuccess;
    }
    /// Gives the first of those entities; a null handle and 1 when there is none.
    KARStatus Get(KARBaseUnknown_var& key1, KARBaseUnknown_var& key2,
                  QOBSharedHandle<T>& entity) const
    {
        const KARMPHandleSequence* found = m_core.Find(key1, key2);
        if (found == nullptr || found->Count() == 0) {
            entity = nullptr;
            return KARUnchanged;
        }
        entity = QOBSharedHandle<T>::unchecked(found->At(0));
        return KARSuccess;
    }
    /// Gives the keys of an entity; null keys and 1 when it has none.
    KARStatus GetKeys(QOBSharedHandle<T> entity, KARBaseUnknown_var& key1,
                      KARBaseUnknown_var& key2) const
    {
        return m_core.GetKeys(entity, key1, key2);
    }
    /// Removes all entries and their keys. The entities can still be got by the keys.
    KARStatus EmptyRegistry()
    {
        m_core.Empty();
        return KARSuccess;
    }

    /// The registry without its type, which may be given entities of T only.
    karmp::RegistryCore& Core() { return m_core; }
    const karmp::RegistryCore& Core() const { return m_core; }

private:
    karmp::RegistryCore m_core;
};
