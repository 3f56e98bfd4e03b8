#include "KARMathStream.h"

#include <bit>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint32_t HeaderMark = 0x484D534BU;
constexpr std::size_t VersionOffset = 8;
constexpr std::size_t CountOffset = 12;
constexpr std::size_t HeaderSize = 16;

static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == 8,
              "the stream stores doubles in their IEEE form");

} // namespace

KARMathStream::KARMathStream() = default;

KARMathStream::KARMathStream(const void* bytes, std::size_t count)
{
    if (bytes != nullptr) {
        const auto* first = static_cast<const std::uint8_t*>(bytes);
        m_bytes.assign(first, first + count);
    }
}

KARMathStream::~KARMathStream() = default;

KARStatus KARMathStream::GetMemoryCopy(void* buffer, std::size_t capacity,
                                       std::size_t& copied) const
{
    copied = 0;
    if (buffer == nullptr || capacity < m_bytes.size())
        return KARFailure;
    if (!m_bytes.empty())
        std::memcpy(buffer, m_bytes.data(), m_bytes.size());
    copied = m_bytes.size();
    return KARSuccess;
}

KARStatus KARMathStream::OpenWriteStreamHeader(int mode, std::size_t& position, int& version)
{
    position = m_bytes.size();
    version = HeaderVersion;
    WriteUInt32(HeaderMark);
    WriteInt32(mode);
    WriteInt32(version);
    WriteUInt32(0);
    return KARSuccess;
}

KARStatus KARMathStream::CloseWriteStreamHeader(std::size_t position, int version)
{
    if (position > m_bytes.size() || m_bytes.size() - position < HeaderSize)
        return KARFailure;
    KARMathStream header(m_bytes.data() + position, sizeof HeaderMark);
    std::uint32_t mark = 0;
    const std::size_t count = m_bytes.size() - position - HeaderSize;
    if (!header.ReadUInt32(mark) || mark != HeaderMark ||
        count > std::numeric_limits<std::uint32_t>::max())
        return KARFailure;
    OverwriteUInt32(position + VersionOffset, static_cast<std::uint32_t>(version));
    OverwriteUInt32(position + CountOffset, static_cast<std::uint32_t>(count));
    return KARSuccess;
}

KARStatus KARMathStream::OpenReadStreamHeader(int mode)
{
    const std::size_t start = m_position;
    std::uint32_t mark = 0;
    std::int32_t storedMode = 0;
    std::int32_t version = 0;
    std::uint32_t count = 0;
    if (ReadUInt32(mark) && ReadInt32(storedMode) && ReadInt32(version) && ReadUInt32(count) &&
        mark == HeaderMark && storedMode == mode && version == HeaderVersion &&
        count == GetRemaining())
        return KARSuccess;
    m_position = start;
    return KARFailure;
}

void KARMathStream::WriteByte(std::uint8_t value)
{
    m_bytes.push_back(value);
}

void KARMathStream::WriteUInt32(std::uint32_t value)
{
    WriteLittleEndian(value, 4);
}

void KARMathStream::WriteInt32(std::int32_t value)
{
    WriteLittleEndian(static_cast<std::uint32_t>(value), 4);
}

void KARMathStream::WriteUInt64(std::uint64_t value)
{
    WriteLittleEndian(value, 8);
}

void KARMathStream::WriteDouble(double value)
{
    WriteLittleEndian(std::bit_cast<std::uint64_t>(value), 8);
}

void KARMathStream::WriteBytes(std::span<const std::uint8_t> bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
}

bool KARMathStream::OverwriteUInt32(std::size_t position, std::uint32_t value)
{
    if (position > m_bytes.size() || m_bytes.size() - position < sizeof value)
        return false;
    for (std::size_t i = 0; i < sizeof value; ++i)
        m_bytes[position + i] = static_cast<std::uint8_t>(value >> (8 * i));
    return true;
}

bool KARMathStream::ReadByte(std::uint8_t& value)
{
    std::uint64_t raw = 0;
    if (!ReadLittleEndian(raw, 1))
        return false;
    value = static_cast<std::uint8_t>(raw);
    return true;
}

bool KARMathStream::ReadUInt32(std::uint32_t& value)
{
    std::uint64_t raw = 0;
    if (!ReadLittleEndian(raw, 4))
        return false;
    value = static_cast<std::uint32_t>(raw);
    return true;
}

bool KARMathStream::ReadInt32(std::int32_t& value)
{
    std::uint32_t raw = 0;
    if (!ReadUInt32(raw))
        return false;
    value = static_cast<std::int32_t>(raw);
    return true;
}

bool KARMathStream::ReadUInt64(std::uint64_t& value)
{
    return ReadLittleEndian(value, 8);
}

bool KARMathStream::ReadDouble(double& value)
{
    std::uint64_t raw = 0;
    if (!ReadLittleEndian(raw, 8))
        return false;
    value = std::bit_cast<double>(raw);
    return true;
}

void KARMathStream::WriteLittleEndian(std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

bool KARMathStream::ReadLittleEndian(std::uint64_t& value, std::size_t bytes)
{
    if (GetRemaining() < bytes)
        return false;
    std::uint64_t raw = 0;
    for (std::size_t i = 0; i < bytes; ++i)
        raw |= static_cast<std::uint64_t>(m_bytes[m_position + i]) << (8 * i);
    value = raw;
    m_position += bytes;
    return true;
}
