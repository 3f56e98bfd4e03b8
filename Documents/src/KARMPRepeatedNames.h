// Names that occur again and again in a document, decoded once.
#pragma once

#include "KARMPNodeStorage.h"
#include "KARMPTextEscapes.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace karmp::documents {

/// A table from bytes to names that forgets: two names with one place push each other out, so that
/// its size does not depend on the document.
class RepeatedNames
{
public:
    explicit RepeatedNames(NodeMemory& memory) : m_memory(memory) {}

    /// The name of `bytes`, which must stay where they are; valid until the next call.
    const NodeText& Get(std::string_view bytes)
    {
        const Ends ends = EndsOf(bytes);
        Entry& entry = m_entries[PlaceOf(ends, bytes.size())];
        // The ends of a short name are all of it.
        const bool known = entry.ends == ends && entry.bytes.size() == bytes.size() &&
                           (bytes.size() <= 2 * sizeof(Word) || entry.bytes == bytes);
        if (!known) {
            m_wide.clear();
            AppendDecodedCData(m_wide, bytes);
            entry.text = NodeText::Name(m_wide, m_memory);
            entry.ends = ends;
            entry.bytes = bytes;
        }
        return entry.text;
    }

private:
    using Word = std::uint64_t;
    /// The first and the last eight bytes, which may overlap; of fewer bytes all are in `first`.
    struct Ends
    {
        Word first = 0;
        Word last = 0;

        bool operator==(const Ends&) const = default;
    };
    struct Entry
    {
        Ends ends;
        std::string_view bytes;
        NodeText text;
    };
    static constexpr Word Mixer = 0x9E3779B97F4A7C15U;
    static constexpr unsigned PlaceBits = 9;
    static constexpr std::size_t PlaceCount = std::size_t{1} << PlaceBits;

    template <class Part>
    static Word Load(const char* bytes)
    {
        Part part = 0;
        std::memcpy(&part, bytes, sizeof part);
        return part;
    }

    static Ends EndsOf(std::string_view bytes)
    {
        const std::size_t size = bytes.size();
        const char* const first = bytes.data();
        const char* const end = first + size;
        if (size >= sizeof(Word)) {
            return {Load<Word>(first), Load<Word>(end - sizeof(Word))};
        }
        if (size >= sizeof(std::uint32_t)) {
            const Word last = Load<std::uint32_t>(end - sizeof(std::uint32_t));
            return {Load<std::uint32_t>(first) << 32U | last, 0};
        }
        if (size == 0) {
            return {};
        }
        const Word ends = Load<std::uint8_t>(first) << 8U | Load<std::uint8_t>(end - 1);
        return {ends << 8U | Load<std::uint8_t>(first + size / 2), 0};
    }

    static std::size_t PlaceOf(const Ends& ends, std::size_t size)
    {
        const Word mixed = (ends.first + size) * Mixer ^ std::rotl(ends.last, 29);
        return static_cast<std::size_t>((mixed * Mixer) >> (64U - PlaceBits));
    }

    NodeMemory& m_memory;
    std::array<Entry, PlaceCount> m_entries;
    std::wstring m_wide;
};

} // namespace karmp::documents
