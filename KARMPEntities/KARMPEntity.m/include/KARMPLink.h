#pragma once

#include "KARMPFailedCheck.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

#include <utility>

/// The one entity that an entity is linked to, or none; referents are compared by address.
///
/// The referent type may be incomplete, as for a handle. A null handle as argument is a failed
/// check and a failure, and nothing changes.
template <class T>
class KARMPLink
{
public:
    /// True when there is a link.
    explicit operator bool() const noexcept { return static_cast<bool>(m_handle); }
    /// The linked handle, null without a link.
    const QOBSharedHandle<T>& Handle() const noexcept { return m_handle; }
    /// Links a referent; a link that was there is dropped.
    KARStatus Set(const QOBSharedHandle<T>& handle,
                  KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(handle), where))
            return KARFailure;
        m_handle = handle;
        return KARSuccess;
    }
    /// The same, where the referent that is linked already gives KARUnchanged.
    KARStatus SetOther(const QOBSharedHandle<T>& handle,
                       KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        return handle && handle == m_handle ? KARUnchanged : Set(handle, where);
    }
    /// Links a referent, or none when the handle is null; always 0.
    KARStatus Assign(const QOBSharedHandle<T>& handle)
    {
        m_handle = handle;
        return KARSuccess;
    }
    /// Gives the linked handle. Without a link a null handle and a failure, without a report.
    KARStatus Get(QOBSharedHandle<T>& handle) const
    {
        handle = m_handle;
        return handle ? KARSuccess : KARFailure;
    }
    /// The same, where having no link is a failed check.
    KARStatus Require(QOBSharedHandle<T>& handle,
                      KARMPSourceLocation where = KARMPSourceLocation::current()) const
    {
        const KARStatus status = Get(handle);
        KARMPVerify(!KARFailed(status), where);
        return status;
    }
    /// Gives the linked handle. Without a link the argument stays, with KARUnchanged.
    KARStatus GetIfSet(QOBSharedHandle<T>& handle) const
    {
        return m_handle ? Get(handle) : KARUnchanged;
    }
    /// Drops the link. A referent that is not the linked one gives KARUnchanged.
    KARStatus Remove(const QOBSharedHandle<T>& handle,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        if (!KARMPVerify(static_cast<bool>(handle), where))
            return KARFailure;
        if (handle != m_handle)
            return KARUnchanged;
        Clear();
        return KARSuccess;
    }
    /// As KARMPHandleSequence::PlaceLinks.
    template <class Placer>
    void PlaceLinks(const KARMPLink& source, Placer& placer)
    {
        Clear();
        if (source)
            placer.Place(&m_handle, source.m_handle._getReferent());
    }
    /// Drops the link and returns what was linked.
    QOBSharedHandle<T> Take() noexcept { return std::exchange(m_handle, nullptr); }
    /// Drops the link.
    void Clear() noexcept { m_handle.detach(); }

private:
    QOBSharedHandle<T> m_handle;
};
