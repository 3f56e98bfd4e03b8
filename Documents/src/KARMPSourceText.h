#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// A position in a text: line and character in the line, both from 1. Each code point is one
/// character, a tab too; a byte order mark is none.
struct SourcePosition
{
    std::uint32_t line = 1;
    std::uint32_t column = 1;
};

/// Checks the bytes of a document before they are parsed and finds lines and columns in them.
class SourceText
{
public:
    /// What may be wrong with bytes.
    enum class Fault { None, NotUtf8, ControlCharacter };

    /// An empty text.
    SourceText() = default;
    /// Checks the bytes, at most 4 GiB less one, up to the first fault. They must live as long as
    /// positions are asked for, and may change afterwards but for their line feeds.
    explicit SourceText(std::string_view bytes);

    Fault Found() const { return m_fault; }
    /// Offset of the fault.
    std::size_t FaultOffset() const { return m_faultOffset; }

    /// True when all bytes are ASCII and no control characters but line feeds.
    bool IsClean() const { return m_isClean; }

    /// The position of an offset.
    SourcePosition Find(std::size_t offset) const;

private:
    /// A block of bytes in which characters have trailing bytes: its number, how many trailing
    /// bytes the blocks before it have, and one bit for each of its own.
    struct WideBlock
    {
        std::uint32_t number;
        std::uint32_t before;
        std::uint64_t trailing;
    };

    std::size_t Step(std::string_view bytes);
    /// Found when the first position is asked for, as most documents are read without one.
    const std::vector<std::uint32_t>& LineStarts() const;
    void FindTrailingBytes(std::string_view bytes);
    std::uint32_t TrailingBytesBefore(std::size_t offset) const;

    std::string_view m_bytes;
    /// Empty until they are found.
    mutable std::vector<std::uint32_t> m_lineStarts;
    std::vector<WideBlock> m_wideBlocks;
    Fault m_fault = Fault::None;
    std::size_t m_faultOffset = 0;
    bool m_isClean = true;
};

} // namespace karmp::documents
