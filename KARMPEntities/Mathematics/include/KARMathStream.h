#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A stream of bytes in memory, written at its end and read from its start, with a little-endian
/// form of numbers that is the same on every machine.
class KAR_API KARMathStream
{
public:
    /// The version that OpenWriteStreamHeader gives.
    static constexpr int HeaderVersion = 1;

    /// An empty stream, to be written.
    KARMathStream();
    /// A stream over a copy of these bytes, to be read; null gives an empty stream.
    KARMathStream(const void* bytes, std::size_t count);
    virtual ~KARMathStream();
    KARMathStream(const KARMathStream&) = default;
    KARMathStream& operator=(const KARMathStream&) = default;

    /// Number of bytes in the stream, a header included.
    std::size_t GetLength() const { return m_bytes.size(); }
    /// All bytes, valid until the next write.
    std::span<const std::uint8_t> GetBytes() const { return m_bytes; }
    /// Copies all bytes into a buffer and tells their number; KARFailure, with nothing copied and
    /// the number 0, when the buffer is null or holds fewer than GetLength bytes.
    KARStatus GetMemoryCopy(void* buffer, std::size_t capacity, std::size_t& copied) const;

    /// Appends a header with a mode of the caller's, and gives the position and the version
    /// that CloseWriteStreamHeader takes.
    KARStatus OpenWriteStreamHeader(int mode, std::size_t& position, int& version);
    /// Enters the version and the number of bytes written since the header was opened into the
    /// header at a position; KARFailure when no header stands there.
    KARStatus CloseWriteStreamHeader(std::size_t position, int version);
    /// Reads past a header; KARFailure, with the reading position kept, when there is none, its
    /// mode is another, its version is unknown, or it announces other than the bytes that follow.
    KARStatus OpenReadStreamHeader(int mode);

    /// Appends one byte.
    void WriteByte(std::uint8_t value);
    /// Appends 4 bytes.
    void WriteUInt32(std::uint32_t value);
    /// Appends 4 bytes.
    void WriteInt32(std::int32_t value);
    /// Appends 8 bytes.
    void WriteUInt64(std::uint64_t value);
    /// Appends the 8 bytes of the IEEE form.
    void WriteDouble(double value);
    /// Appends bytes as they stand.
    void WriteBytes(std::span<const std::uint8_t> bytes);
    /// Overwrites 4 bytes that were written before; false when they do not all exist.
    bool OverwriteUInt32(std::size_t position, std::uint32_t value);

    /// Number of bytes that are still to be read.
    std::size_t GetRemaining() const { return m_bytes.size() - m_position; }
    /// Each of these reads what the write operation of the same name wrote; false, with nothing
    /// read and the argument untouched, when fewer bytes remain.
    bool ReadByte(std::uint8_t& value);
    bool ReadUInt32(std::uint32_t& value);
    bool ReadInt32(std::int32_t& value);
    bool ReadUInt64(std::uint64_t& value);
    bool ReadDouble(double& value);
    /// The bytes that are still to be read, without reading them; valid until the next write.
    std::span<const std::uint8_t> Peek() const { return GetBytes().subspan(m_position); }
    /// Reads from the start again.
    void Rewind() { m_position = 0; }

private:
    void WriteLittleEndian(std::uint64_t value, int bytes);
    bool ReadLittleEndian(std::uint64_t& value, std::size_t bytes);

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_position = 0;
};
