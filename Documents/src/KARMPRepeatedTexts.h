// Names and values that occur again and again in a document, decoded once.
#pragma once

#include "KARMPNodeStorage.h"
#include "KARMPTextEscapes.h"

#include <array>
#include <cstddef>
#include <cstdint>
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

private:
    struct Entry
    {
        std::string_view bytes;
        NodeText text;
    };
    static constexpr std::size_t PlaceCount = 512;

    static std::size_t Place(std::string_view bytes)
    {
        std::uint32_t hash = static_cast<std::uint32_t>(bytes.size());
        for (const char byte : bytes) {
            hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
        }
        return (hash ^ (hash >> 15U)) % PlaceCount;
    }

    NodeMemory& m_memory;
    Kind m_kind;
    std::array<Entry, PlaceCount> m_entries;
    std::wstring m_wide;
};

} // namespace karmp::documents
