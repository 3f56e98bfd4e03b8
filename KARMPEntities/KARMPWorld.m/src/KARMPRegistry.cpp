#include "KARMPRegistry.h"

#include <functional>

namespace karmp {

namespace {

KARBaseUnknown* Resolved(const KARBaseUnknown_var& key)
{
    return key->GetResolved(0);
}

bool IsBelow(const KARBaseUnknown_var& left, const KARBaseUnknown_var& right)
{
    return std::less<const KARBaseUnknown*>()(Resolved(left), Resolved(right));
}

} // namespace

RegistryCore::RegistryCore() = default;
RegistryCore::RegistryCore(const RegistryCore& source) = default;

RegistryCore::~RegistryCore()
{
    m_keysByEntity.clear();
    m_entitiesByKeys.clear();
    m_entities.Clear();
}

// Keys compare by what they stand for at the time of the comparison; a null key comes first.
bool RegistryCore::KeysOrder::operator()(const Keys& left, const Keys& right) const
{
    const auto& [a1, a2] = left;
    const auto& [b1, b2] = right;
    if (b1 != nullptr && (a1 == nullptr || IsBelow(a1, b1)))
        return true;
    if (a1 != nullptr && (b1 == nullptr || IsBelow(b1, a1)))
        return false;
    if (b2 == nullptr)
        return false;
    return a2 == nullptr || IsBelow(a2, b2);
}

std::size_t RegistryCore::Hash::operator()(const QOBSharedBase& entity) const noexcept
{
    return std::hash<const void*>()(entity._getReferent());
}

// What a key stands for, or the key itself when that is nothing.
KARBaseUnknown_var RegistryCore::Normalised(KARBaseUnknown* key)
{
    KARBaseUnknown* const target = key != nullptr ? key->GetResolved(0) : nullptr;
    return KARBaseUnknown_var(target != nullptr ? target : key);
}

KARStatus RegistryCore::Add(const QOBSharedBase& entity)
{
    return m_entities.AppendOnce(entity) ? KARSuccess : KARUnchanged;
}

KARStatus RegistryCore::Add(KARBaseUnknown* key1, KARBaseUnknown* key2, const QOBSharedBase& entity)
{
    if (key1 == nullptr && key2 == nullptr)
        return Add(entity);
    // Only an entity that has keys is refused: one that was added without them is listed twice.
    if (!entity || m_keysByEntity.contains(entity))
        return KARUnchanged;
    m_entities.Append(entity);
    FileUnderKeys(key1, key2, entity);
    return KARSuccess;
}

void RegistryCore::AddNew(KARBaseUnknown* key1, KARBaseUnknown* key2, QOBSharedBase&& entity)
{
    if (key1 != nullptr || key2 != nullptr)
        FileUnderKeys(key1, key2, entity);
    m_entities.AppendNew(std::move(entity));
}

void RegistryCore::FileUnderKeys(KARBaseUnknown* key1, KARBaseUnknown* key2,
                                 const QOBSharedBase& entity)
{
    const Keys keys(Normalised(key1), Normalised(key2));
    m_entitiesByKeys[keys].Append(entity);
    m_keysByEntity.emplace(entity, keys);
}

KARStatus RegistryCore::Remove(const QOBSharedBase& entity)
{
    // The caller's handle may be one that goes with the entry.
    const QOBSharedBase removed(entity);
    if (!m_entities.Remove(removed._getReferent()))
        return KARUnchanged;
    return ForgetKeys(removed);
}

// The entity stays under its keys in the other table, which is wanted: whoever knows the keys can
// still get it.
KARStatus RegistryCore::ForgetKeys(const QOBSharedBase& entity)
{
    const auto entry = m_keysByEntity.find(entity);
    if (entry == m_keysByEntity.end())
        return KARSuccess;
    const auto filed = m_entitiesByKeys.find(entry->second);
    if (filed == m_entitiesByKeys.end() || !filed->second.Contains(entity._getReferent()))
        return KARFailure;
    m_keysByEntity.erase(entry);
    return KARSuccess;
}

const KARMPHandleSequence* RegistryCore::Find(KARBaseUnknown* key1, KARBaseUnknown* key2) const
{
    const auto found = m_entitiesByKeys.find(Keys(Normalised(key1), Normalised(key2)));
    return found != m_entitiesByKeys.end() ? &found->second : nullptr;
}

KARStatus RegistryCore::GetKeys(const QOBSharedBase& entity, KARBaseUnknown_var& key1,
                                KARBaseUnknown_var& key2) const
{
    const auto entry = m_keysByEntity.find(entity);
    const bool found = entry != m_keysByEntity.end();
    key1 = found ? entry->second.first : KARBaseUnknown_var();
    key2 = found ? entry->second.second : KARBaseUnknown_var();
    return found ? KARSuccess : KARUnchanged;
}

void RegistryCore::Empty()
{
    while (m_entities.Count() > 0) {
        const QOBSharedBase entity = m_entities.Take(0);
        ForgetKeys(entity);
    }
}

} // namespace karmp
