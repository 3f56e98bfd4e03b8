// Gathers the small pieces of a text before they are appended to it.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace karmp::documents {

/// A piece costs no call and no test of the text's room; what was put shows in the text after
/// Flushed.
class ByteBuffer
{
public:
    explicit ByteBuffer(std::string& bytes) : m_bytes(bytes) {}

    void Put(char byte)
    {
        MakeRoom(1);
        m_pending[m_count++] = byte;
    }

    void Put(std::string_view piece)
    {
        if (piece.size() > LongestPiece) {
            Flushed().append(piece);
            return;
        }
        MakeRoom(piece.size());
        std::copy(piece.begin(), piece.end(), m_pending.begin() + m_count);
        m_count += piece.size();
    }

    void PutBlanks(std::size_t count)
    {
        for (; count > LongestPiece; count -= LongestPiece) {
            PutBlanks(LongestPiece);
        }
        MakeRoom(count);
        std::fill_n(m_pending.begin() + m_count, count, ' ');
        m_count += count;
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
        MakeRoom(LongestNumber);
        char* const begin = m_pending.data() + m_count;
        m_count += static_cast<std::size_t>(std::to_chars(begin, begin + LongestNumber, value).ptr -
                                            begin);
    }

    /// Appends a text of ASCII letters, digits and ".", "-", "_", which no form escapes; false,
    /// with nothing appended, when it holds anything else or is long.
    bool PutWord(std::wstring_view text)
    {
        if (text.size() > LongestPiece) {
            return false;
        }
        MakeRoom(text.size());
        bool isWord = true;
        std::transform(text.begin(), text.end(), m_pending.begin() + m_count,
                       [&isWord](wchar_t character) {
                           isWord = isWord && IsWordCharacter(character);
                           return static_cast<char>(character);
                       });
        m_count += isWord ? text.size() : 0;
        return isWord;
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

    static constexpr std::size_t WordTableSize = 128;
    static constexpr std::array<bool, WordTableSize> WordTable = [] {
        std::array<bool, WordTableSize> table{};
        for (const char character : std::string_view("0123456789abcdefghijklmnopqrstuvwxyz"
                                                     "ABCDEFGHIJKLMNOPQRSTUVWXYZ.-_")) {
            table[static_cast<std::size_t>(character)] = true;
        }
        return table;
    }();

    static bool IsWordCharacter(wchar_t character)
    {
        const auto unit = static_cast<std::uint32_t>(character);
        return unit < WordTableSize && WordTable[unit];
    }

    void MakeRoom(std::size_t count)
    {
        if (m_count + count > PendingSize) {
            Flushed();
        }
    }

    std::string& m_bytes;
    std::size_t m_count = 0;
    std::array<char, PendingSize> m_pending{};
};

} // namespace karmp::documents
