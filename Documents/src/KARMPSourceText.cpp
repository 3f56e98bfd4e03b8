#include "KARMPSourceText.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace karmp::documents {

namespace {

using Word = std::uint64_t;
constexpr std::size_t WordSize = sizeof(Word);
constexpr Word EachByte = 0x0101010101010101U;

// Marks the bytes of a word that are below a blank or above ASCII. A borrow may mark a byte behind
// a marked one as well, never one in front of it.
Word UncleanBytes(const char* bytes)
{
    Word word = 0;
    std::memcpy(&word, bytes, WordSize);
    return ((word - EachByte * 0x20U) | word) & (EachByte * 0x80U);
}

// The number of clean bytes at the front; it may be less than there are where a word in the order
// of this machine does not tell.
std::size_t CleanBytes(std::string_view bytes)
{
    std::size_t count = 0;
    while (bytes.size() - count >= WordSize) {
        const Word unclean = UncleanBytes(bytes.data() + count);
        if (unclean != 0) {
            if constexpr (std::endian::native == std::endian::little) {
                count += static_cast<std::size_t>(std::countr_zero(unclean)) / 8;
            }
            return count;
        }
        count += WordSize;
    }
    return count;
}

// Length of the UTF-8 character at the front, 0 when there is none.
std::size_t CharacterLength(std::string_view bytes)
{
    const auto byte = [bytes](std::size_t index) {
        return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
    };
    const auto trails = [&byte](std::size_t count) {
        for (std::size_t index = 2; index <= count; ++index) {
            if ((byte(index) & 0xC0U) != 0x80U) {
                return false;
            }
        }
        return true;
    };
    const unsigned first = byte(0);
    const unsigned second = byte(1);
    if (first >= 0xC2 && first <= 0xDF) {
        return (second & 0xC0U) == 0x80U ? 2 : 0;
    }
    // The second byte tells overlong forms, surrogates and values that are too large.
    if (first >= 0xE0 && first <= 0xEF) {
        const unsigned low = first == 0xE0 ? 0xA0U : 0x80U;
        const unsigned high = first == 0xED ? 0x9FU : 0xBFU;
        return second >= low && second <= high && trails(2) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const unsigned low = first == 0xF0 ? 0x90U : 0x80U;
        const unsigned high = first == 0xF4 ? 0x8FU : 0xBFU;
        return second >= low && second <= high && trails(3) ? 4 : 0;
    }
    return 0;
}

} // namespace

SourceText::SourceText(std::string_view bytes)
{
    constexpr std::size_t expectedLine = 16;
    m_lineStarts.reserve(bytes.size() / expectedLine + 1);
    std::size_t offset = 0;
    while ((offset += CleanBytes(bytes.substr(offset))) < bytes.size()) {
        const auto byte = static_cast<unsigned char>(bytes[offset]);
        if (byte >= 0x80) {
            const std::size_t length = CharacterLength(bytes.substr(offset));
            if (length == 0) {
                m_fault = Fault::NotUtf8;
                break;
            }
            offset += length;
            continue;
        }
        if (byte < 0x20 && byte != '\n' && byte != '\t' && byte != '\r') {
            m_fault = Fault::ControlCharacter;
            break;
        }
        ++offset;
        if (byte == '\n') {
            m_lineStarts.push_back(static_cast<std::uint32_t>(offset));
        }
    }
    m_faultOffset = offset;
}

SourcePlace SourceText::Find(std::size_t offset) const
{
    const auto after = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset);
    return {static_cast<std::uint32_t>(after - m_lineStarts.begin()),
            static_cast<std::uint32_t>(offset - *std::prev(after) + 1)};
}

} // namespace karmp::documents
