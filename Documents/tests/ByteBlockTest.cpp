#include "KARMPByteBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace karmp::documents;

namespace {

TEST(ByteBlock, HasABitForEachByteThatAComparisonHoldsFor)
{
    const ByteBlock block("a<b\nc \x80<0123456789");
    EXPECT_EQ(block.Equal('<').Bits(), 0x0082U);
    EXPECT_EQ(block.Equal('!').Bits(), 0U);
    // The byte beyond ASCII is below all others.
    EXPECT_EQ(block.Below(' ').Bits(), 0x0048U);
    EXPECT_EQ(block.Below(0).Bits(), 0x0040U);
}

TEST(ByteBlock, MasksAreJoinedAndSubtracted)
{
    const ByteBlock block("a<b\nc \x80<01234567");
    EXPECT_EQ((block.Equal('<') | block.Equal('a')).Bits(), 0x0083U);
    EXPECT_EQ(block.Below(' ').Without(block.Equal('\n')).Bits(), 0x0040U);
}

TEST(ByteBlock, OfFewerBytesIsFilled)
{
    const std::string bytes = "ab\"d";
    for (std::size_t left = 0; left <= bytes.size(); ++left) {
        const unsigned filled = 0xFFFFU << left & 0xFFFFU;
        EXPECT_EQ(BlockAt(bytes.data(), left, '"').Equal('"').Bits(),
                  filled | (left > 2 ? 0x0004U : 0U));
    }
}

} // namespace
