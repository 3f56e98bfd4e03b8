// Blocks of stored bytes: mark, version, length of the payload (64 bits), its checksum, payload.
#pragma once

#include "KARMathPoint.h"
#include "KARMathStream.h"
#include "KARMathTransformation.h"
#include "KARMathVector.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kar {

inline constexpr std::size_t BlockHeaderSize = 20;

/// What tells blocks of one form from all others.
struct BlockForm
{
    std::uint32_t mark;
    std::uint32_t version;
};

/// Appends a block.
void WriteBlock(KARMathStream& stream, BlockForm form, std::span<const std::uint8_t> payload);

/// Reads the header of the block that makes up the rest of a stream, so that the payload is what
/// remains; false for anything else.
bool ReadBlockHeader(KARMathStream& stream, BlockForm form);

/// Writes values of a payload. What no payload can hold makes the whole writing fail.
class BlockWriter
{
public:
    explicit BlockWriter(KARMathStream& stream) : m_stream(stream) {}

    void Byte(std::uint8_t value) { m_stream.WriteByte(value); }
    void Flag(bool value) { Byte(value ? 1 : 0); }
    void Integer(int value) { m_stream.WriteInt32(value); }
    void Index(std::uint32_t value) { m_stream.WriteUInt32(value); }
    /// A number of items, which 32 bits must hold.
    void Count(std::size_t count);
    void Real(double value) { m_stream.WriteDouble(value); }
    void Reals(const std::vector<double>& values);
    void Vector(const KARMathVector& v);
    void Point(const KARMathPoint& p) { Vector(p - KARMathPoint()); }
    void Points(const std::vector<KARMathPoint>& points);
    void Transformation(const KARMathTransformation& transformation);
    void Fail() { m_failed = true; }
    bool Failed() const { return m_failed; }

private:
    KARMathStream& m_stream;
    bool m_failed = false;
};

/// Reads values of a payload. The first one that cannot be read makes the whole reading fail; from
/// then on everything reads as 0.
class BlockReader
{
public:
    explicit BlockReader(KARMathStream& stream) : m_stream(stream) {}

    std::uint8_t Byte();
    bool Flag();
    int Integer();
    std::uint32_t Index();
    /// A number of items of at least that many bytes each; more than remain are a failure, so that
    /// a count never decides an allocation.
    std::size_t Count(std::size_t bytesPerItem);
    double Real();
    std::vector<double> Reals();
    KARMathVector Vector();
    KARMathPoint Point();
    std::vector<KARMathPoint> Points();
    KARMathTransformation Transformation();
    /// A number of items that was read by other means; 0 and a failure when not all can remain.
    std::size_t Checked(std::uint64_t count, std::size_t bytesPerItem);
    /// True while nothing failed and everything was read.
    bool IsAtEnd() const { return !m_failed && m_stream.GetRemaining() == 0; }
    void Fail() { m_failed = true; }
    bool Failed() const { return m_failed; }

private:
    KARMathStream& m_stream;
    bool m_failed = false;
};

} // namespace kar
