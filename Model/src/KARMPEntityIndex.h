#pragma once

#include "KARMPEntity.h"
#include "KARSharedText.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace karmp::model {

/// The identifier of an entity; null for one that was not given any yet.
const kar::SharedText* IdentifierIfGiven(const KARMPEntity& entity);
/// True for a text whose UTF-8 this is.
bool IsText(const kar::SharedText& text, std::string_view utf8);

/// Finds entities by their identifiers in UTF-8, which never change once they are given: an open
/// hash table that holds the entities. Of several with one identifier the first that was added is
/// found.
class EntityIndex
{
public:
    /// What the operations take with an identifier; that of a stored one needs no allocation.
    static std::size_t HashOf(std::string_view identifier);
    static std::size_t HashOf(const kar::SharedText& identifier);

    void Clear();
    /// Prepares for a number of entities in all.
    void Reserve(std::size_t count);
    /// Adds an entity; one without an identifier is left out.
    void Add(const QOBSharedHandle<KARMPEntity>& entity);
    /// The same by the hash of its identifier, which is known not to be there.
    void AddNew(const QOBSharedHandle<KARMPEntity>& entity, std::size_t hash);
    void Remove(const KARMPEntity& entity);
    /// The entity of an identifier, null when there is none.
    KARMPEntity* Find(std::string_view identifier, std::size_t hash) const;

private:
    /// The hash is 0 in a slot that was never used. A slot that was used and has no entity is
    /// passed over.
    struct Slot
    {
        std::size_t hash = 0;
        QOBSharedHandle<KARMPEntity> entity;
    };

    static std::size_t Marked(std::size_t hash) { return hash | 1; }
    void Grow(std::size_t slots);
    void GrowForOne();

    std::vector<Slot> m_slots; // a power of two
    std::size_t m_used = 0;    // slots with an entity, or that had one
};

} // namespace karmp::model
