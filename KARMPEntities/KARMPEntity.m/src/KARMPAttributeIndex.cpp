#include "KARMPAttributeIndex.h"

#include "KARMPEntity.h"
#include "KARTextHash.h"

#include <utility>

namespace karmp {

namespace {

const KARMPEntity& EntityOf(const QOBSharedBase& handle)
{
    return *static_cast<const KARMPEntity*>(handle._getReferent());
}

} // namespace

std::string_view AttributeIndex::TextOf(const QOBSharedBase& handle)
{
    return EntityOf(handle).IDText();
}

std::uint32_t AttributeIndex::HashOf(std::string_view text) noexcept
{
    return static_cast<std::uint32_t>(kar::HashText(text).hash);
}

std::size_t AttributeIndex::Find(const KARMPHandleSequence& handles, std::string_view text)
{
    const std::uint64_t changes = s_changes.load(std::memory_order_relaxed);
    if (m_changes != changes) {
        m_buckets.assign(m_buckets.size(), Bucket());
        m_texts = 0;
        m_covered = 0;
        m_changes = changes;
    }
    for (; m_covered < handles.Count(); ++m_covered)
        Cover(handles, m_covered);
    const Bucket& bucket = BucketOf(handles, text, HashOf(text));
    return bucket.number != 0 ? bucket.number - 1 : handles.Count();
}

// The bucket of a text, or the free one for it.
AttributeIndex::Bucket& AttributeIndex::BucketOf(const KARMPHandleSequence& handles,
                                                 std::string_view text, std::uint32_t hash)
{
    const std::size_t last = m_buckets.size() - 1;
    std::size_t place = hash & last;
    const auto isOther = [&](const Bucket& bucket) {
        return bucket.number != 0 &&
               (bucket.hash != hash || TextOf(handles.At(bucket.number - 1)) != text);
    };
    while (isOther(m_buckets[place]))
        place = (place + 1) & last;
    return m_buckets[place];
}

void AttributeIndex::Cover(const KARMPHandleSequence& handles, std::size_t position)
{
    Reserve();
    const KARMPEntity& attribute = EntityOf(handles.At(position));
    attribute.m_isIndexed = true;
    const std::uint32_t hash = HashOf(attribute.IDText());
    Bucket& bucket = BucketOf(handles, attribute.IDText(), hash);
    if (bucket.number != 0)
        return;
    bucket = {hash, static_cast<std::uint32_t>(position) + 1};
    ++m_texts;
}

void AttributeIndex::Reserve()
{
    if (2 * (m_texts + 1) <= m_buckets.size())
        return;
    std::vector<Bucket> buckets(2 * m_buckets.size());
    const std::size_t last = buckets.size() - 1;
    for (const Bucket& bucket : m_buckets) {
        if (bucket.number == 0)
            continue;
        std::size_t place = bucket.hash & last;
        while (buckets[place].number != 0)
            place = (place + 1) & last;
        buckets[place] = bucket;
    }
    m_buckets = std::move(buckets);
}

} // namespace karmp
