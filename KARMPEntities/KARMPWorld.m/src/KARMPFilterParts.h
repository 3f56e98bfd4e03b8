#pragma once

#include "KARMPAddressOrder.h"
#include "KARMPDuplicates.h"
#include "KARMPRegistry.h"
#include "KARPrefetch.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace karmp {

/// Prefetch an entity, and then, by what that one holds, its name, which its copy shares.
inline void PrefetchEntity(const QOBSharedObject* entity)
{
    kar::Prefetch(entity, CopiedBytes);
}
inline void PrefetchName(const QOBSharedObject* entity)
{
    if (entity != nullptr)
        static_cast<const QOBBasicEntity*>(entity)->getStoredName().PrefetchShared();
}

/// A walk over the first entities of a registry, with what comes next prefetched.
class RegistryWalk
{
public:
    RegistryWalk(const RegistryCore& registry, std::size_t count)
        : m_registry(&registry), m_count(count), m_entities(registry.From(0))
    {}
    /// The number of all entities, and of those that are behind the walk.
    std::size_t Count() const { return m_count; }
    std::size_t Done() const { return m_done; }
    const QOBSharedObject& Current() const { return *m_entities.front()._getReferent(); }
    void Advance()
    {
        constexpr std::size_t Ahead = kar::PrefetchDistance;
        ++m_done;
        m_entities = m_entities.subspan(1);
        if (2 * Ahead < m_entities.size())
            PrefetchEntity(m_entities[2 * Ahead]._getReferent());
        if (Ahead < m_entities.size())
            PrefetchName(m_entities[Ahead]._getReferent());
        else if (m_entities.empty() && m_done < m_count)
            m_entities = m_registry->From(m_done);
    }
    /// The entity at an index below Count().
    const QOBSharedObject* At(std::size_t index) const
    {
        return m_registry->At(index)._getReferent();
    }

private:
    const RegistryCore* m_registry;
    std::size_t m_count;
    std::size_t m_done = 0;
    std::span<const QOBSharedBase> m_entities; // from the current one on, side by side
};

/// The copy of an entity of a list, which is not filed yet; null when there is none.
struct FilterCopy
{
    QOBSharedBase duplicate;
    const PlainKind* kind = nullptr;
};

/// A part of the entities of a list, in the order of their addresses.
class SortedPart
{
public:
    using Entry = AddressOrder::Entry;

    SortedPart(std::span<const Entry> entries, std::span<FilterCopy> copies)
        : m_entries(entries), m_copies(copies)
    {}
    std::size_t Count() const { return m_entries.size(); }
    std::size_t Done() const { return m_done; }
    const Entry& Current() const { return m_entries[m_done]; }
    void Advance()
    {
        constexpr std::size_t Ahead = kar::PrefetchDistance;
        ++m_done;
        if (m_done + 2 * Ahead < Count()) {
            const Entry& ahead = m_entries[m_done + 2 * Ahead];
            PrefetchEntity(ahead.object);
            kar::Prefetch(&m_copies[ahead.index], 1);
        }
        if (m_done + Ahead < Count())
            PrefetchName(m_entries[m_done + Ahead].object);
    }

private:
    std::span<const Entry> m_entries;
    std::span<FilterCopy> m_copies;
    std::size_t m_done = 0;
};

/// The sorted entities of each group.
inline std::vector<SortedPart> PartsOf(const std::vector<SortedPart::Entry>& entries,
                                       std::vector<FilterCopy>& copies)
{
    std::vector<SortedPart> parts;
    for (auto begin = entries.begin(); begin != entries.end();) {
        const auto end = std::find_if(begin, entries.end(), [&](const SortedPart::Entry& entry) {
            return entry.group != begin->group;
        });
        parts.emplace_back(std::span(begin, end), copies);
        begin = end;
    }
    return parts;
}

/// Visits the entities of some parts by turns, up to a visit that gives false.
///
/// Entities of several families that are linked to one another mostly lie at about the same share
/// of each family. So what a visit touches is still in the caches when it is touched again.
template <class Part, class Visit>
void VisitByTurns(std::vector<Part>& parts, Visit visit)
{
    constexpr std::size_t EntitiesPerTurn = 1'024;
    std::size_t count = 0;
    for (const Part& part : parts)
        count += part.Count();
    const std::size_t turns = count / EntitiesPerTurn + 1;
    for (std::size_t turn = 1; turn <= turns; ++turn)
        for (Part& part : parts)
            for (const std::size_t end = part.Count() * turn / turns; part.Done() < end;
                 part.Advance())
                if (!visit(part.Current()))
                    return;
}

} // namespace karmp
