#pragma once

#include "KARMPEntity.h"
#include "KARMPHandleIndex.h"

#include <cstddef>
#include <vector>

namespace karmp {

/// The duplicates of entities, found by their sources.
class Duplicates
{
public:
    /// Prepares for a number of entities.
    void Reserve(std::size_t count)
    {
        m_sources.reserve(count);
        m_duplicates.reserve(count);
        m_index.Reserve(m_sources.data(), count);
    }
    /// Enters a duplicate in place of an earlier one of the same source.
    void Enter(const QOBSharedBase& source, const QOBSharedBase& duplicate)
    {
        const std::size_t slot = Slot(source);
        if (slot < m_sources.size()) {
            m_duplicates[slot] = duplicate;
            return;
        }
        m_duplicates.push_back(duplicate);
        m_index.Append(m_sources.data(), m_sources.size(), source._getReferent());
        m_sources.push_back(source);
    }
    /// The duplicate of an entity, null when there is none.
    const QOBSharedBase* Find(const QOBSharedBase& source) const
    {
        const std::size_t slot = Slot(source);
        return slot < m_sources.size() ? &m_duplicates[slot] : nullptr;
    }

private:
    std::size_t Slot(const QOBSharedBase& source) const
    {
        return m_index.Find(m_sources.data(), source._getReferent(), m_sources.size());
    }

    std::vector<QOBSharedBase> m_sources;
    std::vector<QOBSharedBase> m_duplicates; // one for each source
    HandleIndex m_index;
};

/// Links the duplicates of entities to one another as their sources are linked, by the operations
/// of the source's family. Links that lead to an entity without a duplicate are dropped.
void RestoreLinks(const QOBSharedList<KARMPEntity>& sources, const Duplicates& duplicates);

} // namespace karmp
