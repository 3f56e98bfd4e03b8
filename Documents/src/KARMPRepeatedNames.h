#pragma once

#include "KARMPNodeStorage.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// A cache of the names of a document, from their bytes to their decoded form. Two names with one
/// slot replace each other, so that the size of the cache does not depend on the document. Names
/// usually follow each other in a repeated order, so that the last four asked for predict the next.
class RepeatedNames
{
public:
    struct Name
    {
        /// The index in the list of all names; meaningless for a name that is too long.
        std::uint32_t number = 0;
        /// The length in bytes.
        std::size_t size = 0;
    };

    /// Appends names of up to `longest` bytes to `names`; texts that are not shared by the process
    /// are allocated in `memory`.
    RepeatedNames(std::vector<NodeText>& names, NodeMemory& memory, std::size_t longest)
        : m_names(names), m_memory(memory), m_longest(longest)
    {
        m_guesses.fill(&m_nothing);
    }
    RepeatedNames(const RepeatedNames&) = delete;
    RepeatedNames& operator=(const RepeatedNames&) = delete;

    /// The name of the bytes up to a null, which must not move and must end before `end`.
    Name Get(const char* bytes, const char* end)
    {
        const auto left = static_cast<std::size_t>(end - bytes);
        const Entry*& guess = m_guesses[(m_history * Mixer) >> (64U - GuessBits)];
        if (!guess->Is(bytes, left))
            guess = &Look(bytes);
        m_history = m_history << 16U ^ guess->name.number;
        return guess->name;
    }

private:
    using Word = std::uint64_t;

    class Entry
    {
    public:
        Entry() = default;
        Entry(std::string_view text, std::uint32_t number)
            : name{number, text.size()}, m_bytes(text.data())
        {
            std::array<char, sizeof(Word)> mask{};
            const std::size_t count = std::min(sizeof(Word), text.size() + 1);
            std::fill_n(mask.begin(), count, '\xFF');
            std::memcpy(&m_mask, mask.data(), sizeof m_mask);
            std::memcpy(&m_first, m_bytes, count);
            if (text.size() >= sizeof(Word))
                m_last = Load(m_bytes + LastOffset());
        }
        /// Compares up to the null; `left` bytes may be read.
        bool Is(const char* bytes, std::size_t left) const
        {
            if (left <= name.size + sizeof(Word) || (Load(bytes) & m_mask) != m_first)
                return false;
            if (name.size < sizeof(Word))
                return true;
            return Load(bytes + LastOffset()) == m_last &&
                   (name.size < 2 * sizeof(Word) || std::memcmp(bytes, m_bytes, name.size) == 0);
        }
        bool Is(std::string_view text) const
        {
            return m_bytes != nullptr && std::string_view(m_bytes, name.size) == text;
        }

        Name name;

    private:
        /// Null for an empty entry, which equals no name.
        const char* m_bytes = nullptr;
        std::size_t LastOffset() const { return name.size + 1 - sizeof(Word); }

        /// The first bytes, the null included; an empty entry has a bit outside of its mask.
        Word m_mask = 0;
        Word m_first = 1;
        /// The last bytes of a longer name, the null included.
        Word m_last = 0;
    };
    static constexpr Word Mixer = 0x9E3779B97F4A7C15U;
    static constexpr unsigned GuessBits = 9;
    static constexpr std::size_t SlotCount = 512;

    static Word Load(const char* bytes)
    {
        Word word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    const Entry& Look(const char* bytes)
    {
        const std::string_view text = bytes;
        if (text.size() > m_longest) {
            m_tooLong.name.size = text.size();
            return m_tooLong;
        }
        Entry& entry = m_entries[std::hash<std::string_view>()(text) % SlotCount];
        if (!entry.Is(text)) {
            m_wide.clear();
            AppendDecodedCData(m_wide, text);
            entry = Entry(text, static_cast<std::uint32_t>(m_names.size()));
            m_names.push_back(NodeText::Name(m_wide, m_memory));
        }
        return entry;
    }

    std::vector<NodeText>& m_names;
    NodeMemory& m_memory;
    const std::size_t m_longest;
    /// These equal no name.
    Entry m_tooLong;
    const Entry m_nothing;
    /// The numbers of the last four names, 16 bits each.
    Word m_history = 0;
    std::array<const Entry*, std::size_t{1} << GuessBits> m_guesses;
    std::array<Entry, SlotCount> m_entries;
    std::wstring m_wide;
};

} // namespace karmp::documents
