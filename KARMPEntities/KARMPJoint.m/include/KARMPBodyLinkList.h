#pragma once

#include "KARMPEnumerations.h"
#include "KARMPFailedCheck.h"
#include "KARMPLinkList.h"
#include "KARStatus.h"

#include <cstddef>
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
        // The smallest block holds the orientations of more bodies than joints mostly have.
        if (m_orientations.size() == m_orientations.capacity())
            m_orientations.reserve(2 * m_orientations.size() + 4);
        const KARStatus status = m_bodies.Add(body, where);
        if (status == KARSuccess)
            m_orientations.push_back(orientation);
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
            m_orientations.erase(m_orientations.begin() + static_cast<std::ptrdiff_t>(position));
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
    /// Appends what a function gives for each body of another list, where that is not null, with
    /// the orientation, without a test for duplicates.
    template <class Map>
    void AppendMapped(const KARMPBodyLinkList& source, Map map)
    {
        m_orientations.reserve(source.m_orientations.size());
        for (int index = 0; index < source.Count(); ++index) {
            if (const QOBSharedHandle<Body> body = map(source.m_bodies.Referent(index))) {
                m_bodies.Append(body);
                m_orientations.push_back(source.m_orientations[static_cast<std::size_t>(index)]);
            }
        }
    }
    /// Drops all links.
    void Clear()
    {
        m_bodies.Clear();
        m_orientations.clear();
    }

private:
    KARMPLinkList<Body> m_bodies;
    std::vector<Orientation> m_orientations; // one a body, same index
};
