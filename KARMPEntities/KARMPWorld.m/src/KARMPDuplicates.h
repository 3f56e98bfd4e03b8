#pragma once

#include "KARMPEntity.h"
#include "KARMPHandleIndex.h"
#include "KARPrefetch.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <vector>

namespace karmp {

/// The bytes of an entity that a copy is made of and that hold its links, but for large ones.
inline constexpr std::size_t CopiedBytes = 384;

/// The duplicates of entities, found by their sources. It refers to neither without counting: the
/// list that is cloned holds the ones, the new world the others.
class Duplicates
{
public:
    /// Prepares for a number of entities.
    explicit Duplicates(std::size_t count) : m_entries(std::bit_ceil(2 * count + 2)) {}

    /// Enters a duplicate in place of an earlier one of the same source.
    void Enter(const QOBSharedObject* source, QOBSharedObject* duplicate)
    {
        m_haveOtherClasses |= &source->getClassInfo() != &duplicate->getClassInfo();
        m_entries[IndexOf(source)] = {source, duplicate};
    }
    /// The duplicate of an entity, null when there is none.
    QOBSharedObject* Find(const QOBSharedObject* source) const
    {
        return m_entries[IndexOf(source)].duplicate;
    }
    /// Prefetches what Find is going to read.
    void Prefetch(const QOBSharedObject* source) const
    {
        kar::Prefetch(&m_entries[HandleIndex::HashOf(source) & (m_entries.size() - 1)],
                      sizeof(Entry));
    }
    /// True when a duplicate has another class than its source.
    bool HaveOtherClasses() const { return m_haveOtherClasses; }

private:
    struct Entry
    {
        const QOBSharedObject* source = nullptr;
        QOBSharedObject* duplicate = nullptr;
    };

    // The entry of a source, or the free one for it; at least half of them are free.
    std::size_t IndexOf(const QOBSharedObject* source) const
    {
        const std::size_t last = m_entries.size() - 1;
        std::size_t index = HandleIndex::HashOf(source) & last;
        while (m_entries[index].source != nullptr && m_entries[index].source != source)
            index = (index + 1) & last;
        return index;
    }

    std::vector<Entry> m_entries;
    bool m_haveOtherClasses = false;
};

/// Goes a number of entries ahead of a walk over a list.
template <std::size_t Distance>
class LookAhead
{
public:
    using List = QOBSharedList<KARMPEntity>;

    explicit LookAhead(const List& list)
        : m_next(std::next(list.begin(), std::min<std::ptrdiff_t>(Distance, std::ssize(list)))),
          m_end(list.end())
    {}
    /// The entry that far ahead; null behind the end of the list.
    const QOBSharedHandle<KARMPEntity>* Next() { return m_next != m_end ? &*m_next++ : nullptr; }

private:
    List::const_iterator m_next;
    List::const_iterator m_end;
};

/// Links the duplicates of entities to one another as their sources are linked, by the operations
/// of the source's family. Links that lead to an entity without a duplicate are dropped.
void RestoreLinks(const QOBSharedList<KARMPEntity>& sources, const Duplicates& duplicates);

} // namespace karmp
