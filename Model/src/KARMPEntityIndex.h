#pragma once

#include "KARMPEntity.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::model {

/// The identifier of an entity; null for one that was not given any yet.
const std::wstring* IdentifierIfGiven(const KARMPEntity& entity);

/// Finds entities by their identifiers, which never change once they are given: an open hash table
/// that holds the entities. Of several with one identifier the first that was added is found.
class EntityIndex
{
public:
    void Clear();
    /// Prepares for a number of entities in all.
    void Reserve(std::size_t count);
    /// Adds an entity; one without an identifier is left out.
    void Add(const QOBSharedHandle<KARMPEntity>& entity);
    void Remove(const KARMPEntity& entity);
    /// The entity of an identifier, null when there is none.
    KARMPEntity* Find(std::wstring_view identifier) const;

private:
    struct Slot
    {
        std::size_t hash = 0;
        QOBSharedHandle<KARMPEntity> entity;
        bool wasUsed = false;
    };

    std::size_t SlotOf(std::wstring_view identifier, std::size_t hash) const;
    void Grow(std::size_t slots);

    std::vector<Slot> m_slots; // a power of two
    std::size_t m_used = 0;    // slots with an entity, or that had one
};

} // namespace karmp::model
