// Names and values that occur again and again in a document, decoded once.
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

/// A table from bytes to wide texts that forgets: two texts with one place push each other out, so
/// that its size does not depend on the document.
class RepeatedTexts
{
public:
    enum class Kind { Names, Values };

    RepeatedTexts(NodeMemory& memory, Kind kind) : m_memory(memory), m_kind(kind) {}

    /// The wide text of `bytes`, which must stay where they are; valid until the next call.
    const NodeText& Get(std::string_view bytes)
    {
        Entry& entry = m_entries[Place(bytes)];
        if (entry.bytes != bytes) {
            m_wide.clear();
            AppendDecodedCData(m_wide, bytes);
            entry.text = m_kind == Kind::Names ? NodeText::Name(m_wide, m_memory)
                                               : NodeText::Copy(m_wide, m_memory);
            entry.bytes = bytes;
        }
        return entry.text;
    }

    /// The same for a text that is in the table; null for another one.
    const NodeText* Find(std::string_view bytes) const
    {
        const Entry& entry = m_entries[Place(bytes)];
        return entry.bytes == bytes ? &entry.text : nullptr;
    }

private:
    struct Entry
    {
        std::string_view bytes;
        NodeText text;
    };
    static constexpr std::uint64_t Mixer = 0x9E3779B97F4A7C15U;
    static constexpr unsigned PlaceBits = 9;
    static constexpr std::size_t PlaceCount = std::size_t{1} << PlaceBits;

    // The ends of a text and its length tell most names apart.
    static std::size_t Place(std::string_view bytes)
    {
        std::uint64_t ends = bytes.size();
        if (bytes.size() >= sizeof(std::uint64_t)) {
            ends += EndsOf<std::uint64_t>(bytes);
        } else if (bytes.size() >= sizeof(std::uint32_t)) {
            ends += EndsOf<std::uint32_t>(bytes);
        } else if (!bytes.empty()) {
            ends +=
                EndsOf<std::uint8_t>(bytes) + static_cast<unsigned char>(bytes[bytes.size() / 2]);
        }
        return static_cast<std::size_t>((ends * Mixer) >> (64U - PlaceBits));
    }

    template <class Word>
    static std::uint64_t EndsOf(std::string_view bytes)
    {
        Word first = 0;
        Word last = 0;
        std::memcpy(&first, bytes.data(), sizeof first);
        std::memcpy(&last, bytes.data() + bytes.size() - sizeof last, sizeof last);
        return first * Mixer ^ std::rotl(std::uint64_t{last}, 29);
    }

    NodeMemory& m_memory;
    Kind m_kind;
    std::array<Entry, PlaceCount> m_entries;
    std::wstring m_wide;
};

} // namespace karmp::documents
