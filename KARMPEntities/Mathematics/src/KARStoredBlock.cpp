#include "KARStoredBlock.h"

#include "KARChecksum.h"

#include <limits>

namespace kar {

void WriteBlock(KARMathStream& stream, BlockForm form, std::span<const std::uint8_t> payload)
{
    stream.WriteUInt32(form.mark);
    stream.WriteUInt32(form.version);
    stream.WriteUInt64(payload.size());
    stream.WriteUInt32(Checksum(payload));
    stream.WriteBytes(payload);
}

bool ReadBlockHeader(KARMathStream& stream, BlockForm form)
{
    std::uint32_t mark = 0;
    std::uint32_t version = 0;
    std::uint64_t length = 0;
    std::uint32_t checksum = 0;
    return stream.ReadUInt32(mark) && stream.ReadUInt32(version) && stream.ReadUInt64(length) &&
           stream.ReadUInt32(checksum) && mark == form.mark && version == form.version &&
           length == stream.GetRemaining() && checksum == Checksum(stream.Peek());
}

void BlockWriter::Count(std::size_t count)
{
    if (count > std::numeric_limits<std::uint32_t>::max())
        Fail();
    m_stream.WriteUInt32(static_cast<std::uint32_t>(count));
}

void BlockWriter::Reals(const std::vector<double>& values)
{
    Count(values.size());
    for (const double value : values)
        Real(value);
}

void BlockWriter::Vector(const KARMathVector& v)
{
    Real(v.GetX());
    Real(v.GetY());
    Real(v.GetZ());
}

void BlockWriter::Points(const std::vector<KARMathPoint>& points)
{
    Count(points.size());
    for (const KARMathPoint& point : points)
        Point(point);
}

void BlockWriter::Transformation(const KARMathTransformation& transformation)
{
    double coefficients[12];
    transformation.GetCoef(coefficients);
    for (const double coefficient : coefficients)
        Real(coefficient);
}

std::uint8_t BlockReader::Byte()
{
    std::uint8_t value = 0;
    if (m_failed || !m_stream.ReadByte(value))
        Fail();
    return value;
}

bool BlockReader::Flag()
{
    const std::uint8_t value = Byte();
    if (value > 1)
        Fail();
    return value == 1;
}

int BlockReader::Integer()
{
    std::int32_t value = 0;
    if (m_failed || !m_stream.ReadInt32(value))
        Fail();
    return value;
}

std::uint32_t BlockReader::Index()
{
    std::uint32_t value = 0;
    if (m_failed || !m_stream.ReadUInt32(value))
        Fail();
    return value;
}

std::size_t BlockReader::Count(std::size_t bytesPerItem)
{
    return Checked(Index(), bytesPerItem);
}

std::size_t BlockReader::Checked(std::uint64_t count, std::size_t bytesPerItem)
{
    if (count > m_stream.GetRemaining() / bytesPerItem)
        Fail();
    return m_failed ? 0 : static_cast<std::size_t>(count);
}

double BlockReader::Real()
{
    double value = 0.0;
    if (m_failed || !m_stream.ReadDouble(value))
        Fail();
    return value;
}

std::vector<double> BlockReader::Reals()
{
    std::vector<double> values(Count(sizeof(double)));
    for (double& value : values)
        value = Real();
    return values;
}

KARMathVector BlockReader::Vector()
{
    const double x = Real();
    const double y = Real();
    const double z = Real();
    return {x, y, z};
}

// Not the origin plus a vector, which would lose the sign of a zero.
KARMathPoint BlockReader::Point()
{
    const KARMathVector v = Vector();
    return {v.GetX(), v.GetY(), v.GetZ()};
}

std::vector<KARMathPoint> BlockReader::Points()
{
    std::vector<KARMathPoint> points(Count(3 * sizeof(double)));
    for (KARMathPoint& point : points)
        point = Point();
    return points;
}

KARMathTransformation BlockReader::Transformation()
{
    double coefficients[12];
    for (double& coefficient : coefficients)
        coefficient = Real();
    KARMathTransformation transformation;
    transformation.SetCoef(coefficients);
    return transformation;
}

} // namespace kar
