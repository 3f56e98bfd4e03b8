#pragma once

#include "KARMPFailedCheck.h"
#include "KARMPHandleSequence.h"
#include "KARStatus.h"

/// The entities that an entity is linked to: insertion order, no duplicates, compared by referent.
///
/// A null handle as argument is a failed check and a failure, and nothing changes.
template <class T>
class KARMPLinkList
{
public:
    /// Number of links.
    int Count() const noexcept { return static_cast<int>(m_handles.Count()); }
    /// True when the referent is linked.
    bool Contains(const QOBSharedHandle<T>& handle) const
    {
        return m_handles.Contains(handle._getReferent());
    }
    /// Appends a link. A referent that is linked already gives KARUnchanged.
    KARStatus Add(const QOBSharedHandle<T>& handle,
                  KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(handle), where))
            return KARFailure;
        return m_handles.AppendOnce(handle) ? KARSuccess : KARUnchanged;
    }
    /// Appends a link that is known not to be null, without a test for duplicates.
    void Append(const QOBSharedHandle<T>& handle) { m_handles.Append(handle); }
    /// As the operations of KARMPHandleSequence.
    void PlaceLinks(const KARMPLinkList& source, karmp::LinkPlacer& placer)
    {
        if (source.Count() > 0 || Count() > 0)
            m_handles.PlaceLinks(source.m_handles, placer);
    }
    bool HasDroppedLinks() const noexcept { return m_handles.HasDroppedLinks(); }
    /// Inserts a link before an index, without a test for duplicates.
    KARStatus Insert(int index, const QOBSharedHandle<T>& handle,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(handle), where))
            return KARFailure;
        m_handles.Insert(index > 0 ? static_cast<std::size_t>(index) : 0, handle);
        return KARSuccess;
    }
    /// Removes a link and keeps the order of the rest. A referent that is not linked gives
    /// KARUnchanged.
    KARStatus Remove(const QOBSharedHandle<T>& handle, std::size_t* position = nullptr,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(handle), where))
            return KARFailure;
        return m_handles.Remove(handle._getReferent(), position) ? KARSuccess : KARUnchanged;
    }
    /// Replaces the link at an index within the list by one that is known not to be null, without a
    /// test for duplicates.
    void Replace(int index, const QOBSharedHandle<T>& handle)
    {
        m_handles.Replace(static_cast<std::size_t>(index), handle);
    }
    /// The index of the first link to the referent; Count() when it is not linked.
    int Find(const QOBSharedHandle<T>& handle) const
    {
        return static_cast<int>(m_handles.Find(handle._getReferent()));
    }
    /// Gives the link at an index. An index outside the list gives a null handle and a failure,
    /// without a report.
    KARStatus Get(int index, QOBSharedHandle<T>& handle) const
    {
        if (index < 0 || index >= Count()) {
            handle = nullptr;
            return KARFailure;
        }
        handle = At(index);
        return KARSuccess;
    }
    /// The link at an index within the list.
    QOBSharedHandle<T> At(int index) const
    {
        return QOBSharedHandle<T>::unchecked(m_handles.At(static_cast<std::size_t>(index)));
    }
    /// The referent of the link at an index within the list.
    const QOBSharedObject* Referent(int index) const
    {
        return m_handles.At(static_cast<std::size_t>(index))._getReferent();
    }
    /// Drops all links.
    void Clear() { m_handles.Clear(); }

private:
    KARMPHandleSequence m_handles;
};
