#pragma once

#include "KARMPEntity.h"
#include "KARSharedText.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace karmp::model {

/// The identifier of an entity; null for one that was not given any yet.
const kar::SharedText* IdentifierIfGiven(const KARMPEntity& entity);
/// Gives a new entity its name as its identifier; they share the text.
void IdentifyByName(KARMPEntity& entity) noexcept;
/// Gives an entity a name that it had; this does not fail.
void RestoreName(KARMPEntity& entity, const kar::SharedText& name) noexcept;
/// True for a text whose UTF-8 this is.
bool IsText(const kar::SharedText& text, std::string_view utf8);

/// Finds entities by their identifiers in UTF-8, which never change once they are given: an open
/// hash table of indices into a list that holds the entities. Of several with one identifier the
/// first that was added is found, unless it is deleted.
///
/// The slots lie in buckets of a cache line that are filled in order, so that neither the
/// search of an identifier that is not there nor its entry has a branch that depends on the hash.
class EntityIndex
{
public:
    /// What is known of an identifier before it is looked up. One number, since a structure that is
    /// stored by its members and then loaded as a whole waits for all stores before: 80 cycles of
    /// the 330 that an addition takes.
    class Key
    {
    public:
        Key(std::uint32_t hash, bool isAscii)
            : m_bits(hash | (isAscii ? std::uint64_t{1} << 32U : 0U))
        {}
        std::uint32_t Hash() const { return static_cast<std::uint32_t>(m_bits); }
        bool IsAscii() const { return m_bits >> 32U != 0; }

    private:
        std::uint64_t m_bits;
    };

    void Clear();
    /// Prepares for a number of entities in all.
    void Reserve(std::size_t count);
    /// Adds an entity; one without an identifier is left out.
    void Add(const QOBSharedHandle<KARMPEntity>& entity);
    /// Prepares for an identifier more, and prefetches where it is looked up.
    Key Prepare(std::string_view identifier);
    /// Adds an entity whose identifier was prepared, unless there is one of that identifier, which
    /// it gives. It fails, if at all, before anything is added.
    KARMPEntity* AddPrepared(const Key& key, std::string_view identifier,
                             const QOBSharedHandle<KARMPEntity>& entity);
    /// Takes an entity out; this does not fail.
    void Remove(const KARMPEntity& entity) noexcept;
    /// The entity of an identifier, null when there is none.
    KARMPEntity* Find(std::string_view identifier) const;

private:
    using Entities = std::vector<QOBSharedHandle<KARMPEntity>>;

    static constexpr std::size_t BucketSize = 8;
    static constexpr std::size_t FirstBuckets = 2;
    /// The hash is 0 in a free slot. The entity of a slot is null when it was taken out; such a
    /// slot is passed over.
    struct Bucket
    {
        std::array<std::uint32_t, BucketSize> hashes{};
        std::array<std::uint32_t, BucketSize> indices{};

        std::size_t Used() const;
        bool Has(std::uint32_t hash) const;
    };

    static constexpr std::size_t LimitOf(std::size_t buckets)
    {
        return BucketSize / 4 * 3 * buckets;
    }
    std::size_t Next(std::size_t bucket) const { return (bucket + 1) & (m_buckets.size() - 1); }
    std::size_t First(std::uint32_t hash) const { return (hash >> 1) & (m_buckets.size() - 1); }
    std::size_t FreeSlot(std::uint32_t hash) const;
    void Enter(std::size_t slot, std::uint32_t hash, std::uint32_t index);
    template <class Visit>
    void ForEachSlot(std::uint32_t hash, Visit visit) const;
    KARMPEntity* Find(std::string_view identifier, std::uint32_t hash) const;
    void Grow(std::size_t buckets);
    void GrowForOne();

    std::vector<Bucket> m_buckets; // a power of two
    Entities m_entities;
    std::size_t m_limit = 0;   // of m_entities, which have the capacity
    std::size_t m_removed = 0; // of them
};

} // namespace karmp::model
