#pragma once

#include "KARMPHandleSequence.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class KARMPEntity;

namespace karmp {

/// Finds the attributes of a long sequence by the application's text.
///
/// A hash table gives the first position of each text. It covers the sequence up to some position
/// and catches up with what was added when it is asked. Attributes that it covers bear a mark: when
/// the text of a marked one changes, all indexes of the process are outdated and made anew when
/// they are asked next, since an attribute does not know who lists it. Texts are mostly given
/// before that, so that this is rare.
class AttributeIndex
{
public:
    /// The position of the first entry with a text, `handles.Count()` without one. Handles that
    /// were covered must still be there.
    std::size_t Find(const KARMPHandleSequence& handles, std::string_view text);
    /// The text of an entry.
    static std::string_view TextOf(const QOBSharedBase& handle);
    /// Outdates all indexes.
    static void Outdate() noexcept { s_changes.fetch_add(1, std::memory_order_relaxed); }

private:
    struct Bucket
    {
        std::uint32_t hash = 0;
        std::uint32_t number = 0; // one more than the position; 0 is a free bucket
    };

    static std::uint32_t HashOf(std::string_view text) noexcept;
    void Reserve();
    void Cover(const KARMPHandleSequence& handles, std::size_t position);
    Bucket& BucketOf(const KARMPHandleSequence& handles, std::string_view text, std::uint32_t hash);

    static inline std::atomic<std::uint64_t> s_changes = 0;

    std::vector<Bucket> m_buckets = std::vector<Bucket>(64); // at least half of them are free
    std::size_t m_texts = 0;
    std::size_t m_covered = 0;
    std::uint64_t m_changes = s_changes.load(std::memory_order_relaxed);
};

} // namespace karmp
