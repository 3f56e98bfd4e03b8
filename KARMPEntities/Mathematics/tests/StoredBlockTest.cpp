#include "KARStoredBlock.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr kar::BlockForm Form{0x11223344U, 3};

Bytes BlockOf(const Bytes& payload)
{
    KARMathStream stream;
    kar::WriteBlock(stream, Form, payload);
    return {stream.GetBytes().begin(), stream.GetBytes().end()};
}

bool Opens(const Bytes& bytes, kar::BlockForm form = Form)
{
    KARMathStream stream(bytes.data(), bytes.size());
    return kar::ReadBlockHeader(stream, form);
}

} // namespace

TEST(StoredBlock, OpensBeforeItsPayload)
{
    const Bytes block = BlockOf({7, 8});
    ASSERT_EQ(block.size(), kar::BlockHeaderSize + 2);
    KARMathStream stream(block.data(), block.size());
    EXPECT_TRUE(kar::ReadBlockHeader(stream, Form));
    EXPECT_EQ(Bytes(stream.Peek().begin(), stream.Peek().end()), (Bytes{7, 8}));
    EXPECT_TRUE(Opens(BlockOf({})));
}

TEST(StoredBlock, OfAnotherFormOrDamagedDoesNotOpen)
{
    Bytes block = BlockOf({7, 8});
    EXPECT_FALSE(Opens(block, {Form.mark, Form.version + 1}));
    EXPECT_FALSE(Opens(block, {Form.mark + 1, Form.version}));
    for (std::size_t index = 0; index < block.size(); ++index) {
        Bytes damaged = block;
        damaged[index] ^= 0x40U;
        EXPECT_FALSE(Opens(damaged)) << index;
        EXPECT_FALSE(Opens({block.begin(), block.begin() + static_cast<std::ptrdiff_t>(index)}));
    }
    block.push_back(0);
    EXPECT_FALSE(Opens(block));
}

TEST(StoredBlock, ReaderReadsWhatTheWriterWrote)
{
    KARMathStream stream;
    kar::BlockWriter writer(stream);
    const KARMathTransformation moved({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}, {1, 2, 3});
    writer.Flag(true);
    writer.Integer(-5);
    writer.Index(0xFFFFFFFFU);
    writer.Points({{1, 2, 3}, {4, 5, 6}});
    writer.Reals({0.5});
    writer.Transformation(moved);
    EXPECT_FALSE(writer.Failed());
    kar::BlockReader reader(stream);
    EXPECT_TRUE(reader.Flag());
    EXPECT_EQ(reader.Integer(), -5);
    EXPECT_EQ(reader.Index(), 0xFFFFFFFFU);
    EXPECT_EQ(reader.Points(), (std::vector<KARMathPoint>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(reader.Reals(), std::vector<double>{0.5});
    EXPECT_FALSE(reader.IsAtEnd());
    EXPECT_EQ(reader.Transformation(), moved);
    EXPECT_TRUE(reader.IsAtEnd());
}

TEST(StoredBlock, EverythingReadsAsZeroAfterAFailure)
{
    KARMathStream stream;
    kar::BlockWriter writer(stream);
    writer.Byte(2);
    writer.Integer(7);
    writer.Real(1.0);
    kar::BlockReader reader(stream);
    EXPECT_FALSE(reader.Flag()); // a flag is 0 or 1
    EXPECT_TRUE(reader.Failed());
    EXPECT_EQ(reader.Integer(), 0);
    EXPECT_EQ(reader.Real(), 0.0);
    EXPECT_EQ(reader.Byte(), 0);
    EXPECT_EQ(reader.Index(), 0U);
    EXPECT_EQ(reader.Count(1), 0U);
    EXPECT_TRUE(reader.Points().empty());
    EXPECT_FALSE(reader.IsAtEnd());
    EXPECT_EQ(stream.GetRemaining(), 12U);
}

TEST(StoredBlock, CountsMoreThanTheBytesHoldAreRefused)
{
    for (const std::uint32_t count : {2U, 3U, 0xFFFFFFFFU}) {
        KARMathStream stream;
        kar::BlockWriter writer(stream);
        writer.Index(count);
        writer.Reals({});
        writer.Integer(0);
        kar::BlockReader reader(stream);
        EXPECT_EQ(reader.Count(4), count == 2 ? 2U : 0U);
        EXPECT_EQ(reader.Failed(), count != 2);
    }
}

TEST(StoredBlock, WriterRefusesMoreItemsThanThirtyTwoBitsHold)
{
    KARMathStream stream;
    kar::BlockWriter writer(stream);
    writer.Count(0xFFFFFFFFU);
    EXPECT_FALSE(writer.Failed());
    writer.Count(std::size_t{1} << 32U);
    EXPECT_TRUE(writer.Failed());
}
