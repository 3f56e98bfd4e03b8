#include "KARMPEntityTable.h"

#include "KARMPEntity.h"

#include <algorithm>

KARMPEntityTable::KARMPEntityTable() = default;
KARMPEntityTable::~KARMPEntityTable() = default;
KARMPEntityTable::KARMPEntityTable(KARMPEntityTable&&) noexcept = default;
KARMPEntityTable& KARMPEntityTable::operator=(KARMPEntityTable&&) noexcept = default;

bool KARMPEntityTable::Set(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity)
{
    const auto [entry, entered] = m_entries.try_emplace(std::wstring(identifier), entity);
    if (!entered)
        entry->second = entity;
    return entered;
}

const QOBSharedHandle<KARMPEntity>* KARMPEntityTable::Find(std::wstring_view identifier) const
{
    const auto found = m_entries.find(identifier);
    return found != m_entries.end() ? &found->second : nullptr;
}

std::vector<const KARMPEntityTable::Entry*> KARMPEntityTable::InOrder() const
{
    std::vector<const Entry*> entries;
    entries.reserve(m_entries.size());
    for (const Entry& entry : m_entries)
        entries.push_back(&entry);
    std::sort(entries.begin(), entries.end(),
              [](const Entry* left, const Entry* right) { return left->first < right->first; });
    return entries;
}
