#pragma once

#include "KARMPEntity.h"
#include "KARSharedText.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace karmp::model {

/// The identifier of an entity; null for one that was not given any yet.
const kar::SharedText* IdentifierIfGiven(const KARMPEntity& entity);
/// Gives a new entity its name as its identifier; they share the text.
void IdentifyByName(KARMPEntity& entity) noexcept;
/// True for a text whose UTF-8 this is.
bool IsText(const kar::SharedText& text, std::string_view utf8);

/// Finds entities by their identifiers in UTF-8, which never change once they are given: an open
/// hash table of indices into a list that holds the entities. Of several with one identifier the
/// first that was added is found, unless it is deleted.
class EntityIndex
{
public:
    /// Where an identifier stands, or would stand.
    struct Place
    {
        /// Null when the identifier is not there.
        KARMPEntity* entity = nullptr;
        std::uint32_t hash = 0;
        std::size_t slot = 0;
    };

    void Clear();
    /// Prepares for a number of entities in all.
    void Reserve(std::size_t count);
    /// Adds an entity; one without an identifier is left out.
    void Add(const QOBSharedHandle<KARMPEntity>& entity);
    /// Looks an identifier up, and has a free slot for it.
    Place FindPlace(std::string_view identifier);
    /// Adds an entity whose identifier has the place, which nothing was added since; this does not
    /// fail.
    void AddAt(const Place& place, const QOBSharedHandle<KARMPEntity>& entity) noexcept;
    /// Takes an entity out; this does not fail.
    void Remove(const KARMPEntity& entity) noexcept;
    /// The entity of an identifier, null when there is none.
    KARMPEntity* Find(std::string_view identifier) const;

private:
    /// The hash is 0 in a free slot. The entity of a slot is null when it was taken out; such a
    /// slot is passed over.
    struct Slot
    {
        std::uint32_t hash = 0;
        std::uint32_t index = 0;
    };

    std::size_t Next(std::size_t slot) const { return (slot + 1) & (m_slots.size() - 1); }
    std::size_t First(std::uint32_t hash) const { return (hash >> 1) & (m_slots.size() - 1); }
    Place FindPlace(std::string_view identifier, std::uint32_t hash) const;
    void Grow(std::size_t slots);
    void GrowForOne();

    std::vector<Slot> m_slots; // a power of two
    std::vector<QOBSharedHandle<KARMPEntity>> m_entities;
    std::size_t m_removed = 0; // of m_entities
};

} // namespace karmp::model
