#include "_SEQUENCE_octet.h"

#include <gtest/gtest.h>

#include <array>

TEST(OctetSequence, GrowsWithZerosAndShrinks)
{
    _SEQUENCE_octet octets;
    EXPECT_EQ(octets.length(), 0);
    octets.length(3);
    EXPECT_EQ(octets.length(), 3);
    EXPECT_EQ(octets[2], 0);
    octets[0] = 7;
    octets[2] = 255;
    octets.length(1);
    octets.length(3);
    EXPECT_EQ(octets[0], 7);
    EXPECT_EQ(octets[2], 0);
    octets.length(-1);
    EXPECT_EQ(octets.length(), 0);
}

TEST(OctetSequence, MakingRoomChangesNothing)
{
    _SEQUENCE_octet octets;
    octets.max(100);
    EXPECT_EQ(octets.length(), 0);
    octets.length(2);
    const unsigned char* before = octets.Data();
    octets.length(100);
    EXPECT_EQ(octets.Data(), before);
    octets.max(-5);
    octets.max(0);
    EXPECT_EQ(octets.length(), 100);
}

TEST(OctetSequence, AnIndexOutsideIsHarmless)
{
    _SEQUENCE_octet octets;
    octets.length(1);
    for (const int index : {-1, 1, 1000000}) {
        octets[index] = 9;
        EXPECT_EQ(octets[index], 0);
        EXPECT_EQ(std::as_const(octets)[index], 0);
    }
    EXPECT_EQ(octets[0], 0);
    EXPECT_EQ(octets.length(), 1);
}

TEST(OctetSequence, CopiesAreIndependent)
{
    const std::array<unsigned char, 3> bytes = {1, 0, 3};
    _SEQUENCE_octet first(bytes);
    _SEQUENCE_octet second(first);
    EXPECT_EQ(first, second);
    second[1] = 2;
    EXPECT_EQ(first[1], 0);
    EXPECT_NE(first, second);
    first = second;
    EXPECT_EQ(first[1], 2);
}
