#include "KARMPEntityIndex.h"

#include "KARMPModelNames.h"
#include "KARPrefetch.h"
#include "KARTextConversion.h"
#include "KARTextHash.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

namespace karmp::model {

struct GivenIdentifier
{};

} // namespace karmp::model

// Content lists see what their entities hold; asking by GetIdentifier would make an identifier, and
// SetIdentifier a second text of the same characters.
template <>
struct karmp::ContentOf<karmp::model::GivenIdentifier>
{
    static void Share(KARMPEntity& entity) noexcept
    {
        std::destroy_at(&entity.m_identifier);
        std::construct_at(&entity.m_identifier, entity.getStoredName());
        entity.m_hasIdentifier = true;
    }
    static const kar::SharedText* Of(const KARMPEntity& entity)
    {
        return entity.m_hasIdentifier ? &entity.m_identifier : nullptr;
    }
};

namespace karmp::model {

const kar::SharedText* IdentifierIfGiven(const KARMPEntity& entity)
{
    return ContentOf<GivenIdentifier>::Of(entity);
}

void IdentifyByName(KARMPEntity& entity) noexcept
{
    ContentOf<GivenIdentifier>::Share(entity);
}

// Setting a name makes a text of its own.
void RestoreName(KARMPEntity& entity, const kar::SharedText& name) noexcept
{
    auto& stored = const_cast<kar::SharedText&>(entity.getStoredName());
    std::destroy_at(&stored);
    std::construct_at(&stored, name);
}

bool IsText(const kar::SharedText& text, std::string_view utf8)
{
    return text.IsNarrow() ? text.Narrow() == utf8 : kar::ToUtf8(text.Copy()) == utf8;
}

namespace {

// The low bit marks a slot that is used.
std::uint32_t Marked(std::uint64_t hash)
{
    return static_cast<std::uint32_t>(hash >> 32U) | 1U;
}

EntityIndex::Key KeyOf(std::string_view identifier)
{
    const kar::TextHash narrow = kar::HashText(identifier);
    return narrow.isAscii
               ? EntityIndex::Key(Marked(narrow.hash), true)
               : EntityIndex::Key(Marked(kar::HashText(kar::ToWide(identifier)).hash), false);
}

// Needs no allocation.
std::uint32_t HashOf(const kar::SharedText& identifier)
{
    return Marked(identifier.IsNarrow() ? kar::HashText(identifier.Narrow()).hash
                                        : kar::HashText(identifier.Get()).hash);
}

} // namespace

inline std::size_t EntityIndex::Bucket::Used() const
{
    std::uint32_t used = 0;
    for (const std::uint32_t hash : hashes)
        used += hash != 0 ? 1U : 0U;
    return used;
}

inline bool EntityIndex::Bucket::Has(std::uint32_t hash) const
{
    std::uint32_t equal = 0;
    for (const std::uint32_t other : hashes)
        equal += other == hash ? 1U : 0U;
    return equal != 0;
}

inline std::size_t EntityIndex::FreeSlot(std::uint32_t hash) const
{
    for (std::size_t bucket = First(hash);; bucket = Next(bucket))
        if (const std::size_t used = m_buckets[bucket].Used(); used < BucketSize)
            return bucket * BucketSize + used;
}

inline void EntityIndex::Enter(std::size_t slot, std::uint32_t hash, std::uint32_t index)
{
    m_buckets[slot / BucketSize].hashes[slot % BucketSize] = hash;
    m_buckets[slot / BucketSize].indices[slot % BucketSize] = index;
}

// Calls `visit` with the index of each entity of a hash, until it gives true.
template <class Visit>
inline void EntityIndex::ForEachSlot(std::uint32_t hash, Visit visit) const
{
    for (std::size_t at = First(hash);; at = Next(at)) {
        const Bucket& bucket = m_buckets[at];
        if (bucket.Has(hash))
            for (std::size_t i = 0; i < BucketSize; ++i)
                if (bucket.hashes[i] == hash && visit(bucket.indices[i]))
                    return;
        if (bucket.hashes.back() == 0)
            return;
    }
}

void EntityIndex::Clear()
{
    m_buckets.clear();
    m_entities.clear();
    m_limit = 0;
    m_removed = 0;
}

void EntityIndex::Reserve(std::size_t count)
{
    std::size_t buckets = FirstBuckets;
    while (LimitOf(buckets) < count)
        buckets *= 2;
    if (buckets > m_buckets.size())
        Grow(buckets);
}

// Buckets keep their order, so that a growth runs through memory in a row. Every fourth slot is
// free at least.
void EntityIndex::Grow(std::size_t buckets)
{
    Entities entities;
    std::vector<Bucket> former(buckets);
    entities.reserve(LimitOf(buckets));
    former.swap(m_buckets);
    m_limit = LimitOf(buckets);
    const bool hasGaps = std::exchange(m_removed, 0) > 0;
    if (!hasGaps)
        std::move(m_entities.begin(), m_entities.end(), std::back_inserter(entities));
    for (const Bucket& bucket : former) {
        for (std::size_t i = 0; i < BucketSize && bucket.hashes[i] != 0; ++i) {
            std::uint32_t index = bucket.indices[i];
            if (hasGaps && !m_entities[index])
                continue;
            if (hasGaps) {
                entities.push_back(std::move(m_entities[index]));
                index = static_cast<std::uint32_t>(entities.size() - 1);
            }
            Enter(FreeSlot(bucket.hashes[i]), bucket.hashes[i], index);
        }
    }
    m_entities.swap(entities);
}

// Growing by four at once spares two moves of three; when most entities were removed, their slots
// are enough.
void EntityIndex::GrowForOne()
{
    const bool isFull = 2 * m_removed <= m_entities.size();
    Grow(m_buckets.empty() ? FirstBuckets : m_buckets.size() * (isFull ? 4 : 1));
}

void EntityIndex::Add(const QOBSharedHandle<KARMPEntity>& entity)
{
    const kar::SharedText* const given = IdentifierIfGiven(*entity);
    if (given == nullptr)
        return;
    const std::string identifier = kar::ToUtf8(given->Copy());
    AddPrepared(Prepare(identifier), identifier, entity);
}

EntityIndex::Key EntityIndex::Prepare(std::string_view identifier)
{
    if (m_entities.size() == m_limit)
        GrowForOne();
    const Key key = KeyOf(identifier);
    kar::Prefetch(&m_buckets[First(key.Hash())],
                  2 * sizeof(Bucket)); // which may begin within a line
    return key;
}

inline KARMPEntity* EntityIndex::Find(std::string_view identifier, std::uint32_t hash) const
{
    KARMPEntity* found = nullptr;
    ForEachSlot(hash, [&](std::uint32_t index) {
        const auto& entity = m_entities[index];
        if (entity && !entity->isOrphaned() && IsText(*IdentifierIfGiven(*entity), identifier))
            found = entity.get();
        return found != nullptr;
    });
    return found;
}

KARMPEntity* EntityIndex::AddPrepared(const Key& key, std::string_view identifier,
                                      const QOBSharedHandle<KARMPEntity>& entity)
{
    if (KARMPEntity* const found = Find(identifier, key.Hash()))
        return found;
    Enter(FreeSlot(key.Hash()), key.Hash(), static_cast<std::uint32_t>(m_entities.size()));
    m_entities.push_back(entity);
    return nullptr;
}

void EntityIndex::Remove(const KARMPEntity& entity) noexcept
{
    const kar::SharedText* const given = IdentifierIfGiven(entity);
    if (given == nullptr || m_buckets.empty())
        return;
    ForEachSlot(HashOf(*given), [&](std::uint32_t index) {
        auto& held = m_entities[index];
        if (held.get() != &entity)
            return false;
        held = nullptr;
        ++m_removed;
        return true;
    });
}

KARMPEntity* EntityIndex::Find(std::string_view identifier) const
{
    return m_buckets.empty() ? nullptr : Find(identifier, KeyOf(identifier).Hash());
}

} // namespace karmp::model
