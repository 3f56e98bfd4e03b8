#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// The texts by which entities are referred to, so that each is made once. They stand side by side
/// in the order in which they were made, which is about that in which they are needed again: the
/// entities themselves do not fit the caches in a large world.
class ReferenceTexts
{
public:
    /// The text of an entity, which ends as that of another one begins or with as many bytes as
    /// Slack says; empty when none was added.
    std::string_view Find(const void* entity) const
    {
        const Entry& entry = m_entries[SlotOf(entity)];
        return {m_texts.data() + entry.begin, entry.size};
    }
    /// Adds the text of an entity that has none yet.
    void Add(const void* entity, std::string_view text);

    /// The bytes that may be read behind a text.
    static constexpr std::size_t Slack = 32;

private:
    struct Entry
    {
        const void* entity = nullptr;
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
    };

    std::size_t SlotOf(const void* entity) const
    {
        const std::size_t mask = m_entries.size() - 1;
        constexpr std::uint64_t mixer = 0x9E3779B97F4A7C15U;
        auto slot = static_cast<std::size_t>(
            (reinterpret_cast<std::uintptr_t>(entity) * mixer) >> 24U & mask);
        while (m_entries[slot].entity != nullptr && m_entries[slot].entity != entity)
            slot = (slot + 1) & mask;
        return slot;
    }
    void Grow();

    static constexpr std::size_t FirstSize = 64;

    std::vector<Entry> m_entries = std::vector<Entry>(FirstSize);
    std::size_t m_count = 0;
    std::string m_texts = std::string(Slack, '\0');
};

} // namespace karmp::documents
