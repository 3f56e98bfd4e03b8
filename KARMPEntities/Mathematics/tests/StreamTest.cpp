#include "KARMathStream.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

std::vector<std::uint8_t> Bytes(const KARMathStream& stream)
{
    return {stream.GetBytes().begin(), stream.GetBytes().end()};
}

} // namespace

TEST(MathStream, NumbersAreLittleEndian)
{
    KARMathStream stream;
    stream.WriteByte(0x11);
    stream.WriteUInt32(0x01020304U);
    stream.WriteInt32(-2);
    stream.WriteDouble(1.0);
    EXPECT_EQ(Bytes(stream), (std::vector<std::uint8_t>{0x11, 4, 3, 2, 1, 0xFE, 0xFF, 0xFF, 0xFF, 0,
                                                        0, 0, 0, 0, 0, 0xF0, 0x3F}));
}

TEST(MathStream, ReadsWhatWasWritten)
{
    KARMathStream stream;
    stream.WriteByte(200);
    stream.WriteInt32(-7);
    stream.WriteUInt64(0x0123456789ABCDEFU);
    stream.WriteDouble(-0.1);
    stream.WriteDouble(std::numeric_limits<double>::quiet_NaN());

    std::uint8_t byte = 0;
    std::int32_t integer = 0;
    std::uint64_t wide = 0;
    double real = 0.0;
    EXPECT_TRUE(stream.ReadByte(byte) && stream.ReadInt32(integer) && stream.ReadUInt64(wide) &&
                stream.ReadDouble(real));
    EXPECT_EQ(byte, 200);
    EXPECT_EQ(integer, -7);
    EXPECT_EQ(wide, 0x0123456789ABCDEFU);
    EXPECT_EQ(real, -0.1);
    EXPECT_TRUE(stream.ReadDouble(real));
    EXPECT_TRUE(std::isnan(real));
    EXPECT_EQ(stream.GetRemaining(), 0U);
    stream.Rewind();
    EXPECT_EQ(stream.GetRemaining(), stream.GetLength());
}

TEST(MathStream, ReadingPastTheEndReadsNothing)
{
    const std::array<std::uint8_t, 3> bytes{1, 2, 3};
    KARMathStream stream(bytes.data(), bytes.size());
    std::uint32_t value = 77;
    EXPECT_FALSE(stream.ReadUInt32(value));
    EXPECT_EQ(value, 77U);
    EXPECT_EQ(stream.GetRemaining(), 3U);
    EXPECT_EQ(stream.Peek().front(), 1);
    EXPECT_EQ(KARMathStream(nullptr, 100).GetLength(), 0U);
}

TEST(MathStream, MemoryCopyTellsTheNumberOfBytes)
{
    KARMathStream stream;
    stream.WriteUInt32(5);
    std::array<std::uint8_t, 6> buffer{};
    std::size_t copied = 9;
    EXPECT_EQ(stream.GetMemoryCopy(buffer.data(), buffer.size(), copied), KARSuccess);
    EXPECT_EQ(copied, 4U);
    EXPECT_EQ(buffer[0], 5);
    EXPECT_EQ(stream.GetMemoryCopy(buffer.data(), 3, copied), KARFailure);
    EXPECT_EQ(copied, 0U);
    EXPECT_EQ(stream.GetMemoryCopy(nullptr, 6, copied), KARFailure);
}

TEST(MathStream, HeaderIsReadWithTheModeItWasWrittenWith)
{
    KARMathStream stream;
    std::size_t position = 99;
    int version = 0;
    EXPECT_EQ(stream.OpenWriteStreamHeader(1, position, version), KARSuccess);
    stream.WriteUInt32(42);
    EXPECT_EQ(stream.CloseWriteStreamHeader(position, version), KARSuccess);

    EXPECT_EQ(stream.OpenReadStreamHeader(2), KARFailure);
    EXPECT_EQ(stream.GetRemaining(), stream.GetLength());
    EXPECT_EQ(stream.OpenReadStreamHeader(1), KARSuccess);
    std::uint32_t value = 0;
    EXPECT_TRUE(stream.ReadUInt32(value));
    EXPECT_EQ(value, 42U);
}

TEST(MathStream, DamagedHeaderIsRefused)
{
    KARMathStream stream;
    std::size_t position = 0;
    int version = 0;
    stream.OpenWriteStreamHeader(1, position, version);
    stream.WriteUInt32(42);
    stream.CloseWriteStreamHeader(position, version);
    const std::vector<std::uint8_t> whole = Bytes(stream);
    for (std::size_t i = 0; i < 16; ++i) {
        std::vector<std::uint8_t> damaged = whole;
        damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ 0x80U);
        EXPECT_EQ(KARMathStream(damaged.data(), damaged.size()).OpenReadStreamHeader(1),
                  KARFailure);
    }
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(KARMathStream(whole.data(), length).OpenReadStreamHeader(1), KARFailure);
}

TEST(MathStream, ClosingWithoutAnOpenedHeaderFails)
{
    KARMathStream stream;
    EXPECT_EQ(stream.CloseWriteStreamHeader(0, 1), KARFailure);
    EXPECT_EQ(stream.CloseWriteStreamHeader(5, 1), KARFailure);
    for (int i = 0; i < 8; ++i)
        stream.WriteUInt32(0);
    const std::vector<std::uint8_t> before = Bytes(stream);
    EXPECT_EQ(stream.CloseWriteStreamHeader(0, 1), KARFailure);
    EXPECT_EQ(Bytes(stream), before);
}
