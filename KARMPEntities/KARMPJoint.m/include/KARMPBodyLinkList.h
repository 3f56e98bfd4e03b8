#pragma once

#include "KARMPEnumerations.h"
#include "KARMPFailedCheck.h"
#include "KARMPLinkList.h"
#include "KARStatus.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

/// The bodies that a joint links, each with the way in which the joint counts it. Link order is
/// kept; a body is linked once. Body is the class of body, spatial or planar.
template <class Body>
class KARMPBodyLinkList
{
public:
    using Orientation = KARMPBodyOrientation::Enum;

    /// Number of linked bodies.
    int Count() const noexcept { return m_bodies.Count(); }
    /// Appends a body. A null handle is a failed check and a failure; a body that is linked already
    /// gives KARUnchanged and keeps its orientation.
    KARStatus Add(const QOBSharedHandle<Body>& body, Orientation orientation,
                  KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        // Capacity comes first, so that no body is without orientation when an allocation fails.
        const auto count = static_cast<std::size_t>(m_bodies.Count());
        m_orientations.Reserve(count + 1);
        const KARStatus status = m_bodies.Add(body, where);
        if (status == KARSuccess)
            m_orientations[count] = orientation;
        return status;
    }
    /// Takes a body out with its orientation. A null handle is a failed check and a failure; a body
    /// that is not linked gives KARUnchanged.
    KARStatus Remove(const QOBSharedHandle<Body>& body,
                     KARMPSourceLocation where = KARMPSourceLocation::current())
    {
        std::size_t position = 0;
        const KARStatus status = m_bodies.Remove(body, &position, where);
        if (status == KARSuccess)
            for (auto last = static_cast<std::size_t>(Count()); position < last; ++position)
                m_orientations[position] = m_orientations[position + 1];
        return status;
    }
    /// Gives the body at an index from 0; outside the list a null handle and a failure.
    KARStatus Get(int index, QOBSharedHandle<Body>& body) const
    {
        return m_bodies.Get(index, body);
    }
    /// The same with the orientation, which stays as it was outside the list.
    KARStatus Get(int index, QOBSharedHandle<Body>& body, Orientation& orientation) const
    {
        const KARStatus status = m_bodies.Get(index, body);
        if (status == KARSuccess)
            orientation = m_orientations[static_cast<std::size_t>(index)];
        return status;
    }
    /// The bodies without their orientations.
    const KARMPLinkList<Body>& Bodies() const noexcept { return m_bodies; }
    /// As the operations of KARMPHandleSequence, with the orientations.
    template <class Placer>
    void PlaceLinks(const KARMPBodyLinkList& source, Placer& placer)
    {
        m_orientations.Reserve(static_cast<std::size_t>(source.Count()));
        m_bodies.PlaceLinks(source.m_bodies, placer);
        std::size_t placed = 0;
        for (int index = 0; index < source.Count(); ++index)
            if (placer.Places(source.m_bodies.Referent(index)))
                m_orientations[placed++] = source.m_orientations[static_cast<std::size_t>(index)];
    }
    bool HasDroppedLinks() const noexcept { return m_bodies.HasDroppedLinks(); }
    /// Drops all links.
    void Clear() { m_bodies.Clear(); }

private:
    // One a body, same index. Those of two bodies, which nearly all joints have, need no
    // allocation.
    class Orientations
    {
    public:
        Orientation& operator[](std::size_t index)
        {
            return index < m_first.size() ? m_first[index] : (*m_others)[index - m_first.size()];
        }
        const Orientation& operator[](std::size_t index) const
        {
            return index < m_first.size() ? m_first[index] : (*m_others)[index - m_first.size()];
        }
        // Makes the indexes below a count valid.
        void Reserve(std::size_t count)
        {
            if (count <= m_first.size())
                return;
            if (m_others == nullptr)
                m_others = std::make_unique<std::vector<Orientation>>();
            if (m_others->size() < count - m_first.size())
                m_others->resize(count - m_first.size());
        }

    private:
        std::array<Orientation, 2> m_first{};
        std::unique_ptr<std::vector<Orientation>> m_others;
    };

    KARMPLinkList<Body> m_bodies;
    Orientations m_orientations;
};
