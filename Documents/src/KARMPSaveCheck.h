// Looks for what a document of a world loses or falsifies.
#pragma once

#include "KARMPContentItem.h"
#include "KARMPEntityText.h"
#include "KARMPListedEntities.h"
#include "KARMPLossyItems.h"
#include "KARMPMessages.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

class KARMPWorld;

namespace karmp::documents {

/// Checks the entities of a world that a document of a version is made of: identifiers carried
/// twice, links to what the document does not hold, links that the other end does not have, items
/// that are not read back, and those that reading needs and an entity lacks. In time about linear
/// in the entities and their links.
///
/// Each entity is noted when it is written, while it is at hand, with the links that were written;
/// that mostly tells that nothing is wrong. Where it does not, all entities are looked at once
/// more. To be run when the document has been written, since identifiers are made in the order of
/// writing.
class SaveCheck
{
public:
    /// Errors are collected apart, so that many warnings do not crowd them out.
    SaveCheck(const KARMPWorld& world, std::wstring_view version, Messages& errors,
              Messages& warnings);
    /// Notes an entity that was written with the links, or is about to be written when they are
    /// null. Reports of its getters are nobody's concern.
    void Note(const KARMPEntity& entity, const WrittenLinks* links);
    /// Ends the notes and checks what they leave in doubt.
    void Run();

private:
    /// What refers back in a class of targets.
    struct Back
    {
        const QOBClassInfo* target;
        std::vector<const ItemInfo*> items;
        /// Not 0 when one item of each side is the other side of the other: a number that belongs
        /// to the two items.
        std::uint64_t pair;
        /// The item is the first one of the two by its path.
        bool isFirst;
    };
    /// A link of a class, and what refers back to it in the classes of the targets.
    struct LinkCheck
    {
        const ItemInfo* info;
        std::vector<std::wstring_view> otherSides;
        std::vector<Back> back;
    };
    struct ClassChecks
    {
        std::vector<LinkCheck> links;
        std::span<const LossyItem> lossy;
        std::vector<NeededItem> needed;
        bool isGivenBack = false;
        /// Objects of the class may be left out of documents.
        bool mayBeLeftOut = false;
        /// The class itself, null where that is not known.
        const std::type_info* type = nullptr;
    };

    ClassChecks& ChecksOf(const KARMPEntity& entity);
    void NoteEntity(const KARMPEntity& entity, const WrittenLinks* links);
    void NoteLinks(const KARMPEntity& entity, ClassChecks& checks, const WrittenLinks& links);
    void NoteLink(const KARMPEntity& entity, LinkCheck& check, const KARMPEntity& target);
    void NoteIdentifier(const KARMPEntity& entity);
    bool AreIdentifiersDistinct() const;
    bool IsSound();
    void CheckGlobals();
    void CheckMaterials();
    void CheckIdentifiers();
    std::vector<std::size_t> DoubtfulIdentifiers() const;
    void CheckEntity(std::size_t number);
    void CheckLayers();
    template <class Visit>
    void ForEachLink(const KARMPEntity& entity, LinkCheck& check, Visit visit);
    bool SumUp(const KARMPEntity& entity, LinkCheck& check, const KARMPEntity& target);
    bool IsOneSided(const KARMPEntity& entity, LinkCheck& check, const KARMPEntity& target);
    void CheckPairs();
    void CheckTarget(std::size_t number, LinkCheck& check, const KARMPEntity& target);
    void TellOfTarget(std::size_t number, const ItemInfo& item, const KARMPEntity& target);
    const Back& BackOf(LinkCheck& check, const KARMPEntity& target);
    static const Back& AddBack(LinkCheck& check, const QOBClassInfo& target);
    static std::uint64_t PairOf(const LinkCheck& check, std::span<const ItemInfo* const> back);
    bool RefersBack(const KARMPEntity& target, const ItemInfo& item, const KARMPEntity& entity);
    void CheckItems(std::size_t number, const ClassChecks& checks);

    const KARMPWorld& m_world;
    std::wstring m_version;
    Messages& m_errors;
    Messages& m_warnings;
    /// Made when it is needed.
    std::optional<ListedEntities> m_entities;
    LossyItems m_lossy;
    std::unordered_map<const QOBClassInfo*, ClassChecks> m_classes;
    const QOBClassInfo* m_lastClass = nullptr;
    ClassChecks* m_lastChecks = nullptr;
    /// The sum of numbers that belong to the links whose other side is one item, counted by one
    /// side up and by the other down: 0 when each of them has its other side.
    std::uint64_t m_sum = 0;
    /// The notes leave something in doubt.
    bool m_isDoubtful = false;
    /// The entity that was about to be written, whose identifier is made by the next note.
    const KARMPEntity* m_noted = nullptr;
    /// The hashes of the identifiers.
    std::vector<std::size_t> m_hashes;
    /// The world's global entities that it does not list, as far as noted.
    std::vector<const QOBSharedObject*> m_globals;
    /// Targets that must be listed and have no link back.
    std::vector<const KARMPEntity*> m_targets;
    /// The interactions that a world which reads them does not list.
    std::vector<std::size_t> m_layers;
    /// The entries of long lists.
    std::map<std::pair<const KARMPEntity*, const ItemInfo*>,
             std::unordered_set<const QOBSharedObject*>>
        m_longLists;
    /// The entry that a link is asked for, and one of a list of its target.
    ItemValue m_value;
    ItemValue m_backValue;
};

} // namespace karmp::documents
