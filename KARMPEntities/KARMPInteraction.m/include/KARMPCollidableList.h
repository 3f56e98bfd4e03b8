#pragma once

#include "KARMPFailedCheck.h"
#include "KARMPLinkList.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <iterator>
#include <type_traits>

class KARMPEntity;

/// The entities that an interaction is about: a link list whose entries can be replaced by any
/// handle, one that is listed already and a null one included.
class KARMP_API KARMPCollidableList
{
public:
    using Handle = QOBSharedHandle<KARMPEntity>;

    /// Number of entries.
    int Count() const noexcept { return m_entries.Count(); }
    /// Gives the entry at an index from 0, which may be null. Outside the list a null handle and a
    /// failure.
    KARStatus Get(int index, Handle& entry) const;
    /// Replaces the entry at an index. Outside the list a failure.
    KARStatus Set(int index, const Handle& entry);
    /// Appends an entry. A null handle is a failed check and a failure; an entity that is listed
    /// already gives KARUnchanged.
    KARStatus Add(const Handle& entry, KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        return m_entries.Add(entry, where);
    }
    /// Takes the first entry of an entity out and keeps the order of the rest. A null handle is a
    /// failed check and a failure; an entity that is not listed gives KARUnchanged.
    KARStatus Remove(const Handle& entry,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        return m_entries.Remove(entry, nullptr, where);
    }
    /// The index of the first entry of an entity; Count() when it is not listed.
    int Find(const Handle& entry) const;

private:
    KARMPLinkList<KARMPEntity> m_entries; // a placeholder stands for null
};

/// A position in the list of an interaction, constant or not, from the first entry to the end
/// behind the last one. Entries that are taken out move the following ones to smaller indices.
template <class List>
class KARMPCollidablePosition
{
public:
    using Handle = KARMPCollidableList::Handle;

    /// An entry: read as a handle, null at the end, and replaced by assigning a handle.
    class Entry
    {
    public:
        /// The collidable, or null at the end of the list.
        operator Handle() const
        {
            Handle entry;
            if (m_list != nullptr)
                m_list->Get(m_index, entry);
            return entry;
        }
        /// Replaces the collidable; nothing happens without a list.
        const Entry& operator=(const Handle& entry) const requires(!std::is_const_v<List>)
        {
            if (m_list != nullptr)
                m_list->Set(m_index, entry);
            return *this;
        }

    private:
        friend class KARMPCollidablePosition;
        Entry(List* list, int index) : m_list(list), m_index(index) {}

        List* m_list;
        int m_index;
    };

    using iterator_category = std::input_iterator_tag;
    using value_type = Handle;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Entry;

    /// A position in no list, which has no entry.
    KARMPCollidablePosition() = default;
    KARMPCollidablePosition(List& list, int index) : m_list(&list), m_index(index) {}

    /// The index of the entry; the number of entries at the end.
    int Index() const { return m_index; }
    Entry operator*() const { return {m_list, m_index}; }
    KARMPCollidablePosition& operator++()
    {
        ++m_index;
        return *this;
    }
    KARMPCollidablePosition operator++(int)
    {
        KARMPCollidablePosition before(*this);
        ++*this;
        return before;
    }
    friend bool operator==(const KARMPCollidablePosition&,
                           const KARMPCollidablePosition&) = default;

private:
    List* m_list = nullptr;
    int m_index = 0;
};
