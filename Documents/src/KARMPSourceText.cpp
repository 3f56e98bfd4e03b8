#include "KARMPSourceText.h"

#include "KARMPByteBlock.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace karmp::documents {

namespace {

// Blocks are tested as a whole, without a branch for each byte.
constexpr std::size_t BlockSize = 64;

// True when the bytes of a block are ASCII that is no control character but the line feed.
bool IsClean(const char* bytes)
{
    static_assert(BlockSize == 4 * ByteBlock::Size);
    const auto unclean = [bytes](std::size_t number) {
        const ByteBlock block(bytes + number * ByteBlock::Size);
        return block.Below(' ').Without(block.Equal('\n'));
    };
    return (unclean(0) | unclean(1) | unclean(2) | unclean(3)).Bits() == 0;
}

// The number of clean bytes at the front, in whole blocks.
std::size_t CleanBytes(std::string_view bytes)
{
    std::size_t count = 0;
    while (bytes.size() - count >= BlockSize && IsClean(bytes.data() + count))
        count += BlockSize;
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
    if (first >= 0xC2 && first <= 0xDF)
        return (second & 0xC0U) == 0x80U ? 2 : 0;
    // The second byte excludes overlong forms, surrogates and values that are too large.
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
    std::size_t offset = 0;
    while (m_fault == Fault::None && (offset += CleanBytes(bytes.substr(offset))) < bytes.size()) {
        // A block that is not clean, or less than one.
        const std::size_t end = std::min(offset + BlockSize, bytes.size());
        while (m_fault == Fault::None && offset < end)
            offset += Step(bytes.substr(offset));
    }
    m_faultOffset = offset;
    m_bytes = bytes.substr(0, offset);
    if (!m_isClean)
        FindTrailingBytes(m_bytes);
}

// The length of the character at the front, which may be at fault.
std::size_t SourceText::Step(std::string_view bytes)
{
    const auto byte = static_cast<unsigned char>(bytes.front());
    if (byte >= 0x80) {
        m_isClean = false;
        const std::size_t length = CharacterLength(bytes);
        m_fault = length == 0 ? Fault::NotUtf8 : Fault::None;
        return length;
    }
    if (byte >= 0x20 || byte == '\n')
        return 1;
    m_isClean = false;
    if (byte != '\t' && byte != '\r') {
        m_fault = Fault::ControlCharacter;
        return 0;
    }
    return 1;
}

const std::vector<std::uint32_t>& SourceText::LineStarts() const
{
    if (m_lineStarts.empty()) {
        m_lineStarts.push_back(0);
        for (std::size_t feed = m_bytes.find('\n'); feed != m_bytes.npos;
             feed = m_bytes.find('\n', feed + 1))
            m_lineStarts.push_back(static_cast<std::uint32_t>(feed + 1));
    }
    return m_lineStarts;
}

// The whole byte order mark counts as trailing, so that it takes no column.
void SourceText::FindTrailingBytes(std::string_view bytes)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::uint32_t before = 0;
    for (std::size_t start = 0; start < bytes.size(); start += BlockSize) {
        start += CleanBytes(bytes.substr(start));
        const std::string_view block = bytes.substr(std::min(start, bytes.size()), BlockSize);
        std::uint64_t trailing = 0;
        for (std::size_t index = 0; index < block.size(); ++index)
            if ((static_cast<unsigned char>(block[index]) & 0xC0U) == 0x80U)
                trailing |= std::uint64_t{1} << index;
        if (start == 0 && bytes.starts_with(byteOrderMark))
            trailing |= 1U;
        if (trailing == 0)
            continue;
        m_wideBlocks.push_back({static_cast<std::uint32_t>(start / BlockSize), before, trailing});
        before += static_cast<std::uint32_t>(std::popcount(trailing));
    }
}

std::uint32_t SourceText::TrailingBytesBefore(std::size_t offset) const
{
    const auto isAbove = [](std::size_t number, const WideBlock& block) {
        return number < block.number;
    };
    const auto after =
        std::upper_bound(m_wideBlocks.begin(), m_wideBlocks.end(), offset / BlockSize, isAbove);
    if (after == m_wideBlocks.begin())
        return 0;
    const WideBlock& block = *std::prev(after);
    const std::size_t bits = offset - block.number * BlockSize;
    const std::uint64_t counted =
        bits < BlockSize ? block.trailing & ((std::uint64_t{1} << bits) - 1) : block.trailing;
    return block.before + static_cast<std::uint32_t>(std::popcount(counted));
}

SourcePosition SourceText::Find(std::size_t offset) const
{
    const std::vector<std::uint32_t>& starts = LineStarts();
    const auto after = std::upper_bound(starts.begin(), starts.end(), offset);
    const std::uint32_t start = *std::prev(after);
    const std::uint32_t trailing = TrailingBytesBefore(offset) - TrailingBytesBefore(start);
    return {static_cast<std::uint32_t>(after - starts.begin()),
            static_cast<std::uint32_t>(offset - start - trailing + 1)};
}

} // namespace karmp::documents
