#include "KARString.h"

#include <gtest/gtest.h>

#include <set>

TEST(NarrowString, StartsEmptyAndTakesNullForEmpty)
{
    const char* none = nullptr;
    EXPECT_EQ(KARString().GetLengthInChar(), 0U);
    EXPECT_TRUE(KARString(none).IsEmpty());
    EXPECT_TRUE(KARString(none, 5).IsEmpty());
    KARString text("word");
    text = none;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_TRUE(text == none);
    EXPECT_STREQ(text, "");
}

TEST(NarrowString, CopiesAreIndependent)
{
    KARString first("one");
    const KARString second(first);
    first = "two";
    EXPECT_EQ(second, "one");
    EXPECT_EQ(first, "two");
    first = second;
    EXPECT_EQ(first, second);
}

TEST(NarrowString, AssignsAPartOfItself)
{
    KARString text("body.axis");
    text = text.CastToCharPtr() + 5;
    EXPECT_EQ(text, "axis");
}

TEST(NarrowString, JoinsOnBothSides)
{
    KARString text("b");
    EXPECT_EQ("a" + text, "ab");
    EXPECT_EQ(text + "c", "bc");
    EXPECT_EQ(text + text, "bb");
    text += "d";
    EXPECT_EQ(text.Append(KARString("e")), "bde");
    text += text;
    EXPECT_EQ(text, "bdebde");
}

TEST(NarrowString, SubStringsEndWithTheText)
{
    const KARString text("damper");
    EXPECT_EQ(text.SubString(0, 4), "damp");
    EXPECT_EQ(text.SubString(4), "er");
    EXPECT_EQ(text.SubString(4, 100), "er");
    EXPECT_EQ(text.SubString(2, 0), "");
    EXPECT_EQ(text.SubString(6), "");
    EXPECT_EQ(text.SubString(7), "");
}

TEST(NarrowString, EqualityIsExact)
{
    const KARString text("Axis");
    EXPECT_TRUE(text == "Axis");
    EXPECT_TRUE("Axis" == text);
    EXPECT_TRUE(text != "axis");
    EXPECT_TRUE(text != "Axi");
    EXPECT_FALSE(text != KARString("Axis"));
    EXPECT_TRUE(text == std::string("Axis"));
}

TEST(NarrowString, KeepsNullBytes)
{
    const KARString text("a\0b", 3);
    EXPECT_EQ(text.GetLengthInChar(), 3U);
    EXPECT_FALSE(text == "a");
    EXPECT_TRUE(text == KARString("a\0b", 3));
    EXPECT_EQ((text + "c").GetLengthInChar(), 4U);
    EXPECT_STREQ(text, "a");
}

TEST(NarrowString, OrdersByBytesWithThePrefixFirst)
{
    const std::set<KARString> texts = {"b", "ab", "a", "\xC3\xA9", ""};
    const std::vector<KARString> ordered(texts.begin(), texts.end());
    EXPECT_EQ(ordered, (std::vector<KARString>{"", "a", "ab", "b", "\xC3\xA9"}));
    EXPECT_TRUE(KARString("a") < "b");
    EXPECT_FALSE(KARString("b") < KARString("b"));
}

TEST(NarrowString, PrintsWithNullBytes)
{
    std::ostringstream stream;
    stream << KARString("a\0b", 3);
    EXPECT_EQ(stream.str(), std::string("a\0b", 3));
}
