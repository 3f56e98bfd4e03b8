#include "KARMPRareText.h"

#include <gtest/gtest.h>

namespace {

using karmp::RareText;

TEST(RareText, IsNewlyEmpty)
{
    const RareText text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.View(), "");
    EXPECT_TRUE(text.Get().IsEmpty());
}

TEST(RareText, KeepsEachByteOfWhatItIsGiven)
{
    const KARString given("a\0b", 3);
    RareText text;
    text = given;
    EXPECT_FALSE(text.IsEmpty());
    EXPECT_EQ(text.View(), given.Text());
    EXPECT_EQ(text.Get(), given);
}

TEST(RareText, IsReplacedAlsoByAnEmptyText)
{
    RareText text;
    text = KARString("Output");
    text = KARString("Input");
    EXPECT_EQ(text.View(), "Input");
    text = KARString();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.View(), "");
}

TEST(RareText, IsCopiedIndependently)
{
    RareText text;
    const RareText copyOfNone(text);
    text = KARString("int");
    const RareText copy(text);
    text = KARString("double");
    EXPECT_TRUE(copyOfNone.IsEmpty());
    EXPECT_EQ(copy.View(), "int");
}

TEST(RareText, TakesOnePointer)
{
    EXPECT_EQ(sizeof(RareText), sizeof(void*));
}

} // namespace
