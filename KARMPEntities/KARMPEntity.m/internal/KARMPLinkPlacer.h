#pragma once

#include "KARMPObjectMap.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

namespace karmp {

/// The duplicates of entities, found by their sources, and the links that lead to them.
///
/// A duplicate is linked while it is made, so that a filtered clone visits each entity once. A link
/// to an entity whose duplicate is not entered yet waits for it: the map's slot of the entity has
/// the address of that link, whose handle has that of the next one, each marked by its lowest bit.
/// Until then, no such link may be read or destroyed.
class KARMP_API LinkPlacer
{
public:
    LinkPlacer() = default;
    LinkPlacer(const LinkPlacer&) = delete;
    LinkPlacer& operator=(const LinkPlacer&) = delete;
    ~LinkPlacer() { DropWaiting(); }

    /// Enters the duplicate of an entity; the links that wait for it lead to it from then on.
    /// False, with nothing changed, when the entity has one.
    bool Enter(const QOBSharedObject* source, QOBSharedObject* duplicate)
    {
        QOBSharedObject*& slot = m_map.SlotOf(source);
        if (slot != nullptr && !IsWaiting(slot))
            return false;
        if (QOBSharedObject* const first = std::exchange(slot, duplicate))
            Complete(first, duplicate);
        return true;
    }
    /// Enters another duplicate of an entity that has one; the links to that one stay.
    void Replace(const QOBSharedObject* source, QOBSharedObject* duplicate)
    {
        m_map.SlotOf(source) = duplicate;
    }
    /// The duplicate of an entity, null when none is entered.
    QOBSharedObject* Find(const QOBSharedObject* source) const noexcept
    {
        QOBSharedObject* const found = m_map.Find(source);
        return IsWaiting(found) ? nullptr : found;
    }
    /// Constructs a handle in some memory as a link to the duplicate of an entity, or as one that
    /// waits for it. False, with nothing constructed, when there is none and no link waits any
    /// more.
    bool Place(QOBSharedBase* link, const QOBSharedObject* related)
    {
        if (!m_letsWait)
            return PlaceFound(link, related);
        QOBSharedObject*& slot = m_map.SlotOf(related);
        if (slot != nullptr && !IsWaiting(slot)) {
            ::new (link) QOBSharedBase(slot);
            return true;
        }
        m_waitingCount += slot == nullptr ? 1 : 0;
        ::new (link) QOBSharedBase(QOBSharedBase::adopt(slot));
        slot = Waiting(link);
        return true;
    }
    /// True when Place makes a link to an entity.
    bool Places(const QOBSharedObject* related) const noexcept
    {
        return m_letsWait || Find(related) != nullptr;
    }
    /// True while a link waits.
    bool HasWaiting() const noexcept { return m_waitingCount > 0; }
    /// Makes the links that still wait null handles; none waits from then on.
    void DropWaiting() noexcept;

private:
    static constexpr std::uintptr_t WaitingBit = 1;

    static bool IsWaiting(const QOBSharedObject* content) noexcept
    {
        return (reinterpret_cast<std::uintptr_t>(content) & WaitingBit) != 0;
    }
    static QOBSharedObject* Waiting(QOBSharedBase* link) noexcept
    {
        return reinterpret_cast<QOBSharedObject*>(reinterpret_cast<std::uintptr_t>(link) |
                                                  WaitingBit);
    }
    static QOBSharedBase* LinkOf(QOBSharedObject* waiting) noexcept
    {
        return reinterpret_cast<QOBSharedBase*>(reinterpret_cast<std::uintptr_t>(waiting) &
                                                ~WaitingBit);
    }
    // Constructs a link to a duplicate that is entered.
    bool PlaceFound(QOBSharedBase* link, const QOBSharedObject* related);
    // Makes the links of a chain lead to a duplicate, or nowhere.
    void Complete(QOBSharedObject* waiting, QOBSharedObject* duplicate) noexcept
    {
        while (waiting != nullptr) {
            QOBSharedBase* const link = LinkOf(waiting);
            waiting = link->release();
            ::new (link) QOBSharedBase(duplicate);
        }
        --m_waitingCount;
    }

    ObjectMap m_map;
    std::size_t m_waitingCount = 0; // of the entities that a link waits for
    bool m_letsWait = true;
};

} // namespace karmp
