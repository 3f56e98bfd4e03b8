#pragma once

#include "KARMPNodeStorage.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp::documents {

/// What bytes may be in names of XML: 0 for one that is in none, else whether it may begin one. The
/// bytes of characters beyond ASCII may be anything.
inline constexpr auto NameBytes = [] {
    enum : std::uint8_t { Inner = 1, Beginning = 2 };
    std::array<std::uint8_t, 256> table{};
    for (std::size_t byte = 0x80; byte < table.size(); ++byte)
        table[byte] = Beginning;
    for (const char byte : std::string_view("-.0123456789"))
        table[static_cast<unsigned char>(byte)] = Inner;
    for (const char byte :
         std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZ:_abcdefghijklmnopqrstuvwxyz"))
        table[static_cast<unsigned char>(byte)] = Beginning;
    return table;
}();
inline bool IsInName(char byte)
{
    return NameBytes[static_cast<unsigned char>(byte)] != 0;
}
inline bool BeginsName(char byte)
{
    return NameBytes[static_cast<unsigned char>(byte)] > 1;
}

/// The names of a document: a number for each different one, from its bytes. Names usually follow
/// each other in a repeated order, so that the last four asked for and the depth predict the next:
/// the depth tells a further entry of a list from what follows the list.
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

    /// The name at the front of bytes that must not move; a byte that is in no name ends it at
    /// `end` or before.
    Name Get(const char* bytes, const char* end, std::size_t depth = 0)
    {
        const auto left = static_cast<std::size_t>(end - bytes);
        const Entry*& guess = m_guesses[((m_history ^ depth << 8U) * Mixer) >> (64U - GuessBits)];
        if (!guess->Is(bytes, left))
            guess = &Look(bytes);
        m_history = m_history << 16U ^ guess->name.number;
        return guess->name;
    }
    /// The length of a name by its number when it is the one at the front of bytes as of Get, else
    /// 0.
    std::size_t SizeOf(std::uint32_t number, const char* bytes, const char* end)
    {
        const Entry& entry = *m_byNumber[number];
        const bool isThere =
            entry.Is(bytes, static_cast<std::size_t>(end - bytes)) || &Look(bytes) == &entry;
        return isThere ? entry.name.size : 0;
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
            const std::size_t count = std::min(sizeof(Word), text.size());
            std::fill_n(mask.begin(), count, '\xFF');
            std::memcpy(&m_mask, mask.data(), sizeof m_mask);
            m_first = 0;
            std::memcpy(&m_first, m_bytes, count);
            if (text.size() >= sizeof(Word))
                m_last = Load(m_bytes + text.size() - sizeof(Word));
        }
        /// `left` bytes may be read.
        bool Is(const char* bytes, std::size_t left) const
        {
            if (left <= name.size + sizeof(Word) || (Load(bytes) & m_mask) != m_first ||
                IsInName(bytes[name.size]))
                return false;
            if (name.size <= sizeof(Word))
                return true;
            return Load(bytes + name.size - sizeof(Word)) == m_last &&
                   (name.size <= 2 * sizeof(Word) || std::memcmp(bytes, m_bytes, name.size) == 0);
        }

        Name name;

    private:
        /// Null for an empty entry, which equals no name.
        const char* m_bytes = nullptr;

        /// The first bytes; an empty entry has a bit outside of its mask.
        Word m_mask = 0;
        Word m_first = 1;
        /// The last bytes of a longer name.
        Word m_last = 0;
    };
    static constexpr Word Mixer = 0x9E3779B97F4A7C15U;
    static constexpr unsigned GuessBits = 11;

    static Word Load(const char* bytes)
    {
        Word word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    const Entry& Look(const char* bytes)
    {
        std::size_t size = 0;
        while (IsInName(bytes[size]))
            ++size;
        if (size > m_longest) {
            m_tooLong.name.size = size;
            return m_tooLong;
        }
        const std::string_view text(bytes, size);
        const auto number = static_cast<std::uint32_t>(m_names.size());
        const auto [place, added] = m_entries.try_emplace(text, text, number);
        if (added) {
            m_wide.clear();
            AppendDecodedCData(m_wide, text);
            m_names.push_back(NodeText::Name(m_wide, m_memory));
            m_byNumber.push_back(&place->second);
        }
        return place->second;
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
    std::unordered_map<std::string_view, Entry> m_entries;
    std::vector<const Entry*> m_byNumber;
    std::wstring m_wide;
};

} // namespace karmp::documents
