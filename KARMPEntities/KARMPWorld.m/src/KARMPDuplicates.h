#pragma once

#include "KARMPEntity.h"
#include "KARMPLinkPlacer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <unordered_set>

namespace karmp {

/// The bytes of an entity that a copy is made of and that hold its links, but for large ones.
inline constexpr std::size_t CopiedBytes = 384;

class RegistryCore;

/// Links a duplicate as its source is linked, by the members of the class.
using PlaceLinks = void (*)(const QOBSharedObject& source, QOBSharedObject& duplicate,
                            LinkPlacer& placer);
/// The function for a class; null when its links are not restored.
PlaceLinks PlaceLinksOf(const QOBClassInfo& info);

/// How a clone treats entities of a plain class: one that overrides nothing of what copies them, so
/// that it can be done without the calls through the entity itself.
struct PlainKind
{
    QOBDuplicateFunction copy;
    /// The registries of the class's family; null when a filtered clone does not carry it over.
    const RegistryCore* source;
    RegistryCore* target;
    /// The number of the family.
    std::uint32_t family;
    /// False when the links are read and made by operations of the entity that the class overrides,
    /// or when copying one may look at other copies.
    bool hasFamilyLinks;
    /// Null when the links of the family are not restored.
    PlaceLinks placeLinks;
};

/// The duplicates of the entities of a list, found by their sources. It refers to neither without
/// counting: the list holds the ones, the new world the others.
///
/// As long as all entities are of plain classes with their families' links, and none is listed
/// twice, a duplicate is linked when it is entered. Else RestoreLinks does it by the operations of
/// the entities.
class Duplicates
{
public:
    explicit Duplicates(const QOBSharedList<KARMPEntity>& sources) : m_sources(sources) {}

    /// Enters a duplicate in place of an earlier one of the same source.
    void Enter(const QOBSharedObject* source, QOBSharedObject* duplicate)
    {
        m_haveOtherClasses |= &source->getClassInfo() != &duplicate->getClassInfo();
        EnterOther(source, duplicate);
    }
    /// The same where the source is of a plain class, both stay until this object is gone, and an
    /// entity without its family's links was announced.
    void Enter(const QOBSharedObject& source, QOBSharedObject& duplicate, const PlainKind& kind)
    {
        if (!m_arePlain || !m_placer.Enter(&source, &duplicate))
            EnterOther(&source, &duplicate);
        else if (kind.placeLinks != nullptr)
            kind.placeLinks(source, duplicate, m_placer);
    }
    /// Announces an entity that is not copied and linked in one step: what was linked until then is
    /// not linked any more, since the copy may look at it.
    void NoteOther();
    /// Notes a duplicate that others refer to as well.
    void NoteShared(const QOBSharedObject* duplicate) { m_shared.insert(duplicate); }
    /// Ends the linking of duplicates while they are entered; none is entered after it.
    void FinishEntering();
    /// Takes all links of the duplicates away, by which they hold one another, so that they are
    /// freed where a clone fails; those of shared ones stay. This must be done before any of them
    /// is destroyed.
    void Discard() noexcept;
    /// Links the duplicates of entities to one another as their sources are linked, by the
    /// operations of the source's family where they are not linked already. Links that lead to an
    /// entity without a duplicate are dropped.
    void RestoreLinks();

    /// The duplicate of an entity, null when there is none.
    QOBSharedObject* Find(const QOBSharedObject* source) const { return m_placer.Find(source); }
    /// True when a duplicate has another class than its source.
    bool HaveOtherClasses() const { return m_haveOtherClasses; }

private:
    void EnterOther(const QOBSharedObject* source, QOBSharedObject* duplicate);

    const QOBSharedList<KARMPEntity>& m_sources;
    LinkPlacer m_placer;
    std::unordered_set<const QOBSharedObject*> m_shared;
    bool m_haveOtherClasses = false;
    bool m_arePlain = true;
    bool m_areDiscarded = false;
};

/// Goes a number of entries ahead of a walk over a list, or a part of it.
template <std::size_t Distance>
class LookAhead
{
public:
    using List = QOBSharedList<KARMPEntity>;

    explicit LookAhead(const List& list) : LookAhead(list.begin(), list.size()) {}
    LookAhead(List::const_iterator begin, std::size_t count)
        : m_next(std::next(begin, static_cast<std::ptrdiff_t>(std::min(Distance, count)))),
          m_left(count - std::min(Distance, count))
    {}
    /// The entry that far ahead; null behind the end.
    const QOBSharedHandle<KARMPEntity>* Next()
    {
        if (m_left == 0)
            return nullptr;
        --m_left;
        return &*m_next++;
    }

private:
    List::const_iterator m_next;
    std::size_t m_left;
};

} // namespace karmp
