#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace karmp::documents {

/// Collects short pieces of a text in a fixed array before they are appended to the text, so that a
/// piece costs no call and no check of the text's capacity. What was put is in the text after a
/// call of Flushed.
class ByteBuffer
{
public:
    explicit ByteBuffer(std::string& bytes) : m_bytes(bytes) {}

    void Put(char byte)
    {
        EnsureCapacity(1);
        m_pending[m_count++] = byte;
    }

    void Put(std::string_view piece)
    {
        if (piece.size() > LongestPiece) {
            Flushed().append(piece);
            return;
        }
        EnsureCapacity(piece.size());
        Copy(piece, m_pending.data() + m_count);
        m_count += piece.size();
    }

    /// Appends the shortest form that reads back the same.
    template <class Number>
    void PutNumber(Number value)
    {
        // Most numbers of a model are 0 and 1; a negative zero is neither.
        if (value == 0 && !std::signbit(static_cast<double>(value))) {
            Put('0');
            return;
        }
        if (value == 1) {
            Put('1');
            return;
        }
        EnsureCapacity(LongestNumber);
        char* const begin = m_pending.data() + m_count;
        m_count += static_cast<std::size_t>(std::to_chars(begin, begin + LongestNumber, value).ptr -
                                            begin);
    }

    /// Appends a text of ASCII characters that need no escape anywhere; false, with nothing
    /// appended, when it holds other characters, begins or ends with a blank, or is long.
    bool PutPlain(std::wstring_view text)
    {
        if (text.empty())
            return true;
        if (text.size() > LongestPiece || text.front() == L' ' || text.back() == L' ')
            return false;
        EnsureCapacity(text.size());
        // A loop without an early exit is vectorised.
        std::uint32_t all = 0;
        bool isPlain = true;
        std::transform(text.begin(), text.end(), m_pending.begin() + m_count,
                       [&all, &isPlain](wchar_t character) {
                           const auto unit = static_cast<std::uint32_t>(character);
                           all |= unit;
                           isPlain &= PlainTable[unit % PlainTable.size()];
                           return static_cast<char>(character);
                       });
        isPlain &= all < PlainTable.size();
        m_count += isPlain ? text.size() : 0;
        return isPlain;
    }

    /// The size of the text with all that was put.
    std::size_t Size() const { return m_bytes.size() + m_count; }

    /// The text with all that was put.
    std::string& Flushed()
    {
        m_bytes.append(m_pending.data(), m_count);
        m_count = 0;
        return m_bytes;
    }

private:
    static constexpr std::size_t PendingSize = 4096;
    static constexpr std::size_t LongestPiece = 256;
    static constexpr std::size_t LongestNumber = 32;

    static constexpr std::array<bool, 128> PlainTable = [] {
        std::array<bool, 128> table{};
        for (std::size_t unit = 0x20; unit < 0x7F; ++unit)
            table[unit] = unit != '&' && unit != '<' && unit != '>' && unit != '"' && unit != '\\';
        return table;
    }();

    // For most pieces a call of memcpy takes longer than the copy itself.
    static void Copy(std::string_view piece, char* to)
    {
        const std::size_t size = piece.size();
        if (size > 2 * sizeof(std::uint64_t))
            std::memcpy(to, piece.data(), size);
        else if (size >= sizeof(std::uint64_t))
            CopyEnds<std::uint64_t>(piece, to);
        else if (size >= sizeof(std::uint32_t))
            CopyEnds<std::uint32_t>(piece, to);
        else
            for (std::size_t index = 0; index < size; ++index)
                to[index] = piece[index];
    }
    // Copies a word from either end; the two may overlap.
    template <class Word>
    static void CopyEnds(std::string_view piece, char* to)
    {
        const std::size_t last = piece.size() - sizeof(Word);
        Word first = 0;
        Word second = 0;
        std::memcpy(&first, piece.data(), sizeof(Word));
        std::memcpy(&second, piece.data() + last, sizeof(Word));
        std::memcpy(to, &first, sizeof(Word));
        std::memcpy(to + last, &second, sizeof(Word));
    }

    void EnsureCapacity(std::size_t count)
    {
        if (m_count + count > PendingSize)
            Flushed();
    }

    std::string& m_bytes;
    std::size_t m_count = 0;
    std::array<char, PendingSize> m_pending{};
};

} // namespace karmp::documents
