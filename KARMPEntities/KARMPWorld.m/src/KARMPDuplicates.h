#pragma once

#include "KARLargePages.h"
#include "KARMPEntity.h"
#include "KARMPObjectMap.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

namespace karmp {

/// The bytes of an entity that a copy is made of and that hold its links, but for large ones.
inline constexpr std::size_t CopiedBytes = 384;

class RegistryCore;
struct PlainKind;

/// An entity of a plain class, and its duplicate.
struct PlainPair
{
    const QOBSharedObject* source;
    QOBSharedObject* duplicate;
    const PlainKind* kind;
};

/// The steps by which the links of an entity are restored: one that was placed must be counted.
enum class LinkStep { PrefetchLists, Place, Count };
/// Takes a step for an entity of a plain class.
using RestorePlainLinks = void (*)(LinkStep step, const PlainPair& pair, const ObjectMap& map);
/// How a clone treats entities of a plain class: one that overrides nothing of what copies them, so
/// that it can be done without the calls through the entity itself.
struct PlainKind
{
    QOBDuplicateFunction copy;
    /// The registries of the class's family; null when a filtered clone does not carry it over.
    const RegistryCore* source;
    RegistryCore* target;
    /// False when the links are read and made by operations of the entity that the class overrides.
    bool hasFamilyLinks;
    /// Restores the links of a duplicate otherwise; null when those of the family are not restored.
    RestorePlainLinks restoreLinks;
};

/// The function for a class; null when its links are not restored.
RestorePlainLinks PlainLinksOf(const QOBClassInfo& info);
/// Links the duplicates of entities of plain classes, as the other RestoreLinks does.
void RestoreLinks(const std::vector<PlainPair>& pairs, const ObjectMap& map);

/// The duplicates of entities, found by their sources. It refers to neither without counting: the
/// list that is cloned holds the ones, the new world the others.
class Duplicates
{
public:
    /// Prepares for a number of entities.
    explicit Duplicates(std::size_t count)
    {
        m_pairs.reserve(count);
        kar::AskForLargePages(m_pairs.data(), count * sizeof(PlainPair));
    }

    /// Enters a duplicate in place of an earlier one of the same source.
    void Enter(const QOBSharedObject* source, QOBSharedObject* duplicate)
    {
        m_haveOtherClasses |= &source->getClassInfo() != &duplicate->getClassInfo();
        m_arePlain &= m_map.Enter(source, duplicate);
    }
    /// The same where the source is of a plain class.
    void Enter(const PlainPair& pair)
    {
        m_arePlain &= m_map.Enter(pair.source, pair.duplicate) && pair.kind->hasFamilyLinks;
        m_pairs.push_back(pair);
    }
    /// The duplicate of an entity, null when there is none.
    QOBSharedObject* Find(const QOBSharedObject* source) const { return m_map.Find(source); }
    /// True when a duplicate has another class than its source.
    bool HaveOtherClasses() const { return m_haveOtherClasses; }

    /// Notes a source whose class is not plain.
    void NoteOther() { m_arePlain = false; }
    /// True when all sources are of plain classes with their families' links, and none is listed
    /// twice.
    bool ArePlain() const { return m_arePlain; }
    /// The duplicates of plain classes.
    const std::vector<PlainPair>& Pairs() const { return m_pairs; }
    const ObjectMap& Map() const { return m_map; }

private:
    ObjectMap m_map;
    std::vector<PlainPair> m_pairs;
    bool m_haveOtherClasses = false;
    bool m_arePlain = true;
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
