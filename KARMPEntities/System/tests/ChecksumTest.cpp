#include "KARChecksum.h"

#include <gtest/gtest.h>

#include <vector>

TEST(Checksum, IsTheCommonOne)
{
    const std::vector<std::uint8_t> text{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(kar::Checksum(text), 0xCBF43926U);
    EXPECT_EQ(kar::Checksum({}), 0U);
}
