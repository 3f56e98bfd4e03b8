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
        End(PutNumber(value, Begin(LongestNumber)));
    }

    /// Appends a text of ASCII characters that need no escape anywhere; false, with nothing
    /// appended, when it holds other characters, or begins or ends with a blank.
    template <class Char>
    bool PutPlain(std::basic_string_view<Char> text)
    {
        if (text.empty())
            return true;
        if (text.front() == ' ' || text.back() == ' ' || !Narrow(text, Begin(text.size())))
            return false;
        m_next += text.size();
        return true;
    }

    // The same at an address that has the capacity; they give the end.
    static constexpr std::size_t LongestNumber = 32;
    template <class Number>
    static char* PutNumber(Number value, char* to)
    {
        // Most numbers of a model are 0 and 1; a negative zero is neither.
        if ((value == 0 && !std::signbit(static_cast<double>(value))) || value == 1) {
            *to = value == 0 ? '0' : '1';
            return to + 1;
        }
        return std::to_chars(to, to + LongestNumber, value).ptr;
    }
    /// The shortest form of a decimal number with up to 12 places: `units` of 1e-12, from 1e-3 up
    /// and below 1e3, where that form has no exponent.
    static char* PutDecimal(std::uint64_t units, char* to)
    {
        const std::uint64_t ones = units / OneInUnits;
        if (ones < 10)
            *to++ = static_cast<char>('0' + ones);
        else
            to = std::to_chars(to, to + LongestNumber, ones).ptr;
        std::uint64_t places = units % OneInUnits;
        if (places == 0)
            return to;
        *to = '.';
        for (char* pair = to + PlaceCount - 1; pair > to; pair -= 2) {
            std::memcpy(pair, &DigitPairs[2 * (places % 100)], 2);
            places /= 100;
        }
        to += PlaceCount;
        while (*to == '0')
            --to;
        return to + 1;
    }
    static constexpr std::uint64_t OneInUnits = 1'000'000'000'000;
    /// Puts the characters of a text as bytes; false, with nothing to be kept, when one of them is
    /// not ASCII or may need an escape.
    template <class Char>
    static bool Narrow(std::basic_string_view<Char> text, char* to)
    {
        if (text.size() < BlockSize)
            return IsNone(NarrowShort(text, to));
        // The last block overlaps the one before it.
        const std::size_t last = text.size() - BlockSize;
        Marks special = NarrowBlock(text.data() + last, to + last);
        for (std::size_t index = 0; index < last; index += BlockSize)
            special |= NarrowBlock(text.data() + index, to + index);
        return IsNone(special);
    }

    /// The size of the text with all that was put.
    std::size_t Size() const { return OffsetOf(m_next); }
    /// The offset of an address in it.
    std::size_t OffsetOf(const char* address) const
    {
        return static_cast<std::size_t>(address - m_bytes.data());
    }
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
    static constexpr std::size_t LongestStep = 1U << 13U;
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
    // Of sixteen bytes, those that may need an escape have bits.
    using Marks = __m128i;

    static bool IsNone(Marks special)
    {
        return _mm_movemask_epi8(special) == 0;
    }
    static Marks Special(__m128i bytes)
    {
        const auto is = [](__m128i some, char byte) {
            return _mm_cmpeq_epi8(some, _mm_set1_epi8(byte));
        };
        // With one bit set, '<' is '>' and '"' is '&'.
        const __m128i angles = _mm_or_si128(bytes, _mm_set1_epi8('<' ^ '>'));
        const __m128i quotes = _mm_or_si128(bytes, _mm_set1_epi8('"' ^ '&'));
        // As signed numbers, those from 0x80 up are below the blank.
        return _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')) | is(bytes, '\x7F') | is(bytes, '\\') |
               is(angles, '>') | is(quotes, '&');
    }
    static Marks NarrowBlock(const char* from, char* to)
    {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
        return Special(bytes);
    }
    static Marks NarrowBlock(const wchar_t* from, char* to)
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
    static Marks NarrowShort(std::wstring_view text, char* to)
    {
        return _mm_set1_epi8(NarrowEach(text, to) != 0 ? -1 : 0);
    }
    // By words from either end, which overlap.
    static Marks NarrowShort(std::string_view text, char* to)
    {
        const auto copyEnds = [&text, to]<class Word>(Word& first, Word& last) {
            const std::size_t behind = text.size() - sizeof(Word);
            std::memcpy(&first, text.data(), sizeof(Word));
            std::memcpy(&last, text.data() + behind, sizeof(Word));
            std::memcpy(to, &first, sizeof(Word));
            std::memcpy(to + behind, &last, sizeof(Word));
        };
        if (text.size() >= sizeof(std::int64_t)) {
            std::int64_t first = 0;
            std::int64_t last = 0;
            copyEnds(first, last);
            return Special(_mm_set_epi64x(first, last));
        }
        if (text.size() >= sizeof(std::int32_t)) {
            std::int32_t first = 0;
            std::int32_t last = 0;
            copyEnds(first, last);
            return Special(_mm_set_epi32(first, last, first, last));
        }
        return _mm_set1_epi8(NarrowEach(text, to) != 0 ? -1 : 0);
    }
#else
    static constexpr std::size_t BlockSize = 8;
    using Marks = unsigned;

    static bool IsNone(Marks special)
    {
        return special == 0;
    }
    template <class Char>
    static Marks NarrowShort(std::basic_string_view<Char> text, char* to)
    {
        return NarrowEach(text, to);
    }
    template <class Char>
    static Marks NarrowBlock(const Char* from, char* to)
    {
        return NarrowEach(std::basic_string_view<Char>(from, BlockSize), to);
    }
#endif

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
