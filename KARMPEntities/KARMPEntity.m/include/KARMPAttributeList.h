#pragma once

#include "KARMPExport.h"
#include "KARMPFailedCheck.h"
#include "KARMPHandleSequence.h"
#include "KARStatus.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace karmp {

/// A sequence of attributes that finds an entry by the application's text of the attribute.
///
/// Attributes are added behind the others and leave together. A short sequence is scanned. A long
/// one has an index of the texts, which is made at the first search and follows what is added; a
/// text that changes outdates it. The results are those of a scan.
class KARMP_API AttributeSequence
{
public:
    AttributeSequence() noexcept = default;
    /// Number of entries.
    std::size_t Count() const noexcept { return m_entries != nullptr ? CountEntries() : 0; }
    /// True when an entry refers to the object.
    bool Contains(const QOBSharedObject* object) const;
    /// The entry at a position below Count().
    const QOBSharedBase& At(std::size_t position) const;
    /// Adds an entry, a handle of an attribute that is not null.
    void Append(const QOBSharedBase& handle);
    /// The first entry whose KARMPEntity::GetID equals the text, byte for byte; null without one.
    const QOBSharedBase* Find(std::string_view text) const;
    /// Takes out all entries, first to last.
    void Clear();

private:
    struct Entries;
    struct KARMP_API End
    {
        void operator()(Entries* entries) const noexcept;
    };

    std::size_t CountEntries() const noexcept;

    std::unique_ptr<Entries, End> m_entries; // null when empty, as mostly
};

} // namespace karmp

/// The attributes of one kind that an entity or an attribute lists: insertion order, no duplicates,
/// compared by referent.
template <class T>
class KARMPAttributeList
{
public:
    /// Number of attributes.
    int Count() const noexcept { return static_cast<int>(m_attributes.Count()); }
    /// Appends an attribute. One that is listed gives KARUnchanged, a null handle is a failed check
    /// and a failure.
    KARStatus Add(const QOBSharedHandle<T>& attribute,
                  KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(attribute), where))
            return KARFailure;
        if (m_attributes.Contains(attribute._getReferent()))
            return KARUnchanged;
        m_attributes.Append(attribute);
        return KARSuccess;
    }
    /// Takes an attribute out and keeps the order of the rest. One that is not listed gives
    /// KARUnchanged, a null handle is a failed check and a failure.
    KARStatus Remove(const QOBSharedHandle<T>& attribute,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(attribute), where))
            return KARFailure;
        if (!m_attributes.Contains(attribute._getReferent()))
            return KARUnchanged;
        karmp::AttributeSequence others;
        for (int index = 0; index < Count(); ++index)
            if (const QOBSharedHandle<T> entry = At(index); entry != attribute)
                others.Append(entry);
        m_attributes = std::move(others);
        return KARSuccess;
    }
    /// Gives the attribute at an index. An index outside the list gives a null handle and a
    /// failure, without a report.
    KARStatus Get(int index, QOBSharedHandle<T>& attribute) const
    {
        const bool isListed = index >= 0 && index < Count();
        attribute = isListed ? At(index) : QOBSharedHandle<T>();
        return isListed ? KARSuccess : KARFailure;
    }
    /// The attribute at an index within the list.
    QOBSharedHandle<T> At(int index) const
    {
        return QOBSharedHandle<T>::unchecked(m_attributes.At(static_cast<std::size_t>(index)));
    }
    /// The first attribute whose GetID equals a text; null without one.
    QOBSharedHandle<T> Find(std::string_view text) const
    {
        const QOBSharedBase* const found = m_attributes.Find(text);
        return found != nullptr ? QOBSharedHandle<T>::unchecked(*found) : QOBSharedHandle<T>();
    }
    /// Drops all attributes.
    void Clear() { m_attributes.Clear(); }

private:
    karmp::AttributeSequence m_attributes;
};
