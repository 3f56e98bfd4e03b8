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
#include <type_traits>

#ifdef __SSE2__
#    include <emmintrin.h>
#endif

namespace karmp::documents {

/// Appends short pieces to a text. The text is made longer in steps and filled afterwards, so that
/// a piece costs no call; it ends where the last piece ends after a call of Trim and when
/// the buffer is destroyed.
class ByteBuffer
{
public:
    explicit ByteBuffer(std::string& bytes)
        : m_bytes(bytes), m_next(bytes.data() + bytes.size()), m_end(m_next)
    {}
    ~ByteBuffer()
    {
        if (m_bytes.size() > Size())
            Trim();
    }
    ByteBuffer(const ByteBuffer&) = delete;
    ByteBuffer& operator=(const ByteBuffer&) = delete;

    void Put(char byte)
    {
        EnsureCapacity(1);
        *m_next++ = byte;
    }

    void Put(std::string_view piece)
    {
        EnsureCapacity(piece.size());
        std::memcpy(m_next, piece.data(), piece.size());
        m_next += piece.size();
    }

    /// Appends a piece of up to `Padded` bytes, of which so many may be read behind its beginning.
    template <std::size_t Padded>
    void PutPadded(const char* piece, std::size_t size)
    {
        EnsureCapacity(Padded);
        std::memcpy(m_next, piece, Padded);
        m_next += size;
    }

    /// Where up to `count` bytes may be put that End is told of.
    char* Begin(std::size_t count)
    {
        EnsureCapacity(count);
        return m_next;
    }
    /// Appends what was put up to an address.
    void End(char* end) { m_next = end; }

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
        m_next = std::to_chars(m_next, m_next + LongestNumber, value).ptr;
    }

    /// Appends the shortest form of a decimal number with up to 12 places: `units` of 1e-12, from
    /// 1e-3 up and below 1e3, where that form has no exponent.
    void PutDecimal(std::uint64_t units)
    {
        EnsureCapacity(LongestNumber);
        const std::uint64_t ones = units / OneInUnits;
        if (ones < 10)
            *m_next++ = static_cast<char>('0' + ones);
        else
            m_next = std::to_chars(m_next, m_next + LongestNumber, ones).ptr;
        std::uint64_t places = units % OneInUnits;
        if (places == 0)
            return;
        *m_next = '.';
        for (char* pair = m_next + PlaceCount - 1; pair > m_next; pair -= 2) {
            std::memcpy(pair, &DigitPairs[2 * (places % 100)], 2);
            places /= 100;
        }
        m_next += PlaceCount;
        while (*m_next == '0')
            --m_next;
        ++m_next;
    }
    static constexpr std::uint64_t OneInUnits = 1'000'000'000'000;

    /// Appends a text of ASCII characters that need no escape anywhere; false, with nothing
    /// appended, when it holds other characters, or begins or ends with a blank.
    template <class Char>
    bool PutPlain(std::basic_string_view<Char> text)
    {
        if (text.empty())
            return true;
        if (text.front() == ' ' || text.back() == ' ')
            return false;
        EnsureCapacity(text.size());
        if (!Narrow(text, m_next))
            return false;
        m_next += text.size();
        return true;
    }

    /// The size of the text with all that was put.
    std::size_t Size() const { return static_cast<std::size_t>(m_next - m_bytes.data()); }
    /// What was put from an offset on, valid until the next piece.
    char* At(std::size_t offset) { return m_bytes.data() + offset; }
    std::string_view From(std::size_t offset) const
    {
        return {m_bytes.data() + offset, Size() - offset};
    }
    /// Takes back what was put from an offset on.
    void Truncate(std::size_t size) { m_next = m_bytes.data() + size; }
    /// Inserts `count` bytes at an offset, which are to be filled.
    void Insert(std::size_t offset, std::size_t count)
    {
        EnsureCapacity(count);
        std::memmove(At(offset + count), At(offset), Size() - offset);
        m_next += count;
    }

    /// Ends the text where the last piece ends.
    void Trim()
    {
        m_bytes.resize(Size());
        m_end = m_next;
    }
    /// The same before the text is changed.
    template <class Change>
    void AppendBy(Change change)
    {
        Trim();
        change(m_bytes);
        m_end = m_next = m_bytes.data() + m_bytes.size();
    }

private:
    static constexpr std::size_t ShortestStep = 1U << 10U;
    static constexpr std::size_t LongestStep = 1U << 15U;
    static constexpr std::size_t LongestNumber = 32;
    static constexpr std::ptrdiff_t PlaceCount = 12;

    static constexpr std::array<char, 200> DigitPairs = [] {
        std::array<char, 200> pairs{};
        for (std::size_t number = 0; number < 100; ++number) {
            pairs[2 * number] = static_cast<char>('0' + number / 10);
            pairs[2 * number + 1] = static_cast<char>('0' + number % 10);
        }
        return pairs;
    }();

    // Not 0 for a character that may need an escape.
    static unsigned IsSpecial(std::uint32_t unit)
    {
        return unit - 0x20U > 0x5EU || unit == '&' || unit == '<' || unit == '>' || unit == '"' ||
               unit == '\\';
    }
    // Narrows characters; not 0 when one of them may need an escape.
    template <class Char>
    static unsigned NarrowEach(std::basic_string_view<Char> text, char* to)
    {
        unsigned special = 0;
        for (const Char character : text) {
            const auto unit = static_cast<std::make_unsigned_t<Char>>(character);
            special |= IsSpecial(static_cast<std::uint32_t>(unit));
            *to++ = static_cast<char>(character);
        }
        return special;
    }
#if defined(__SSE2__) && __SIZEOF_WCHAR_T__ == 4
    static constexpr std::size_t BlockSize = 16;

    static unsigned Special(__m128i bytes)
    {
        const auto is = [bytes](char byte) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte)); };
        // As signed numbers, those from 0x80 up are below the blank.
        __m128i special = _mm_cmplt_epi8(bytes, _mm_set1_epi8(' '));
        for (const char byte : {'\x7F', '&', '<', '>', '"', '\\'})
            special = _mm_or_si128(special, is(byte));
        return static_cast<unsigned>(_mm_movemask_epi8(special));
    }
    static unsigned NarrowBlock(const char* from, char* to)
    {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
        return Special(bytes);
    }
    // 8 to 15 bytes by words from either end, which overlap.
    static unsigned NarrowEach(std::string_view text, char* to)
    {
        if (text.size() < sizeof(std::uint64_t))
            return NarrowEach<char>(text, to);
        const std::size_t last = text.size() - sizeof(std::uint64_t);
        const auto copy = [&text, to](std::size_t index) {
            const __m128i word =
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text.data() + index));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to + index), word);
            return word;
        };
        const __m128i first = copy(0);
        return Special(_mm_unpacklo_epi64(first, copy(last)));
    }
    static unsigned NarrowBlock(const wchar_t* from, char* to)
    {
        const auto four = [from](std::size_t index) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + index));
        };
        // What does not fit 16 bits, or 8, becomes a number that is special.
        const __m128i bytes =
            _mm_packus_epi16(_mm_packs_epi32(four(0), four(4)), _mm_packs_epi32(four(8), four(12)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
        return Special(bytes);
    }
#else
    static constexpr std::size_t BlockSize = 8;

    template <class Char>
    static unsigned NarrowBlock(const Char* from, char* to)
    {
        return NarrowEach(std::basic_string_view<Char>(from, BlockSize), to);
    }
#endif
    // The last block overlaps the one before it.
    template <class Char>
    static bool Narrow(std::basic_string_view<Char> text, char* to)
    {
        if (text.size() < BlockSize)
            return NarrowEach(text, to) == 0;
        const std::size_t last = text.size() - BlockSize;
        unsigned special = NarrowBlock(text.data() + last, to + last);
        for (std::size_t index = 0; index < last; index += BlockSize)
            special |= NarrowBlock(text.data() + index, to + index);
        return special == 0;
    }

    void EnsureCapacity(std::size_t count)
    {
        if (static_cast<std::size_t>(m_end - m_next) < count)
            Grow(count);
    }
    void Grow(std::size_t count)
    {
        const std::size_t size = Size();
        m_bytes.resize(size + count + std::clamp(size, ShortestStep, LongestStep));
        m_next = m_bytes.data() + size;
        m_end = m_bytes.data() + m_bytes.size();
    }

    std::string& m_bytes;
    char* m_next;
    char* m_end;
};

} // namespace karmp::documents
