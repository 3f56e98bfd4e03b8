#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#if defined(__SSE2__)
#    include <emmintrin.h>
#endif

namespace karmp::documents {

#if defined(__SSE2__)

/// Which bytes of a block a comparison holds for.
class ByteMask
{
public:
    explicit ByteMask(__m128i bytes) : m_bytes(bytes) {}
    friend ByteMask operator|(ByteMask left, ByteMask right)
    {
        return ByteMask(_mm_or_si128(left.m_bytes, right.m_bytes));
    }
    ByteMask Without(ByteMask other) const
    {
        return ByteMask(_mm_andnot_si128(other.m_bytes, m_bytes));
    }
    /// A bit for each byte, the lowest for the first.
    unsigned Bits() const { return static_cast<unsigned>(_mm_movemask_epi8(m_bytes)); }

private:
    __m128i m_bytes;
};

/// Sixteen bytes that are compared at once, which halves the time of who looks for few bytes among
/// many. As signed numbers, bytes beyond ASCII are below all others.
class ByteBlock
{
public:
    static constexpr std::size_t Size = sizeof(__m128i);

    explicit ByteBlock(const char* bytes)
        : m_bytes(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)))
    {}
    ByteMask Equal(char byte) const
    {
        return ByteMask(_mm_cmpeq_epi8(m_bytes, _mm_set1_epi8(byte)));
    }
    ByteMask Below(char byte) const
    {
        return ByteMask(_mm_cmplt_epi8(m_bytes, _mm_set1_epi8(byte)));
    }

private:
    __m128i m_bytes;
};

#else

class ByteMask
{
public:
    explicit ByteMask(unsigned bits) : m_bits(bits) {}
    friend ByteMask operator|(ByteMask left, ByteMask right)
    {
        return ByteMask(left.m_bits | right.m_bits);
    }
    ByteMask Without(ByteMask other) const { return ByteMask(m_bits & ~other.m_bits); }
    unsigned Bits() const { return m_bits; }

private:
    unsigned m_bits;
};

class ByteBlock
{
public:
    static constexpr std::size_t Size = 16;

    explicit ByteBlock(const char* bytes) { std::memcpy(m_bytes.data(), bytes, Size); }
    ByteMask Equal(char byte) const
    {
        return MaskOf([byte](signed char own) { return own == static_cast<signed char>(byte); });
    }
    ByteMask Below(char byte) const
    {
        return MaskOf([byte](signed char own) { return own < static_cast<signed char>(byte); });
    }

private:
    template <class Holds>
    ByteMask MaskOf(Holds holds) const
    {
        unsigned bits = 0;
        for (std::size_t index = 0; index < Size; ++index)
            bits |= holds(m_bytes[index]) ? 1U << index : 0U;
        return ByteMask(bits);
    }

    std::array<signed char, Size> m_bytes;
};

#endif

/// The block at the front of `left` bytes; where those are fewer, `filler` follows them.
inline ByteBlock BlockAt(const char* bytes, std::size_t left, char filler)
{
    if (left >= ByteBlock::Size)
        return ByteBlock(bytes);
    std::array<char, ByteBlock::Size> filled;
    filled.fill(filler);
    std::copy_n(bytes, left, filled.begin());
    return ByteBlock(filled.data());
}

} // namespace karmp::documents
