#include "CommaLocale.h"
#include "KARUnicodeString.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <vector>

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

std::string Printed(const char* format, auto number)
{
    char text[2000];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

} // namespace

TEST(UnicodeString, TakesNarrowTextByteForByte)
{
    const char* none = nullptr;
    EXPECT_TRUE(KARUnicodeString(none).IsEmpty());
    EXPECT_TRUE(KARUnicodeString(none, 3).IsEmpty());
    const KARUnicodeString text("\xFFz\0\x80", 4);
    EXPECT_EQ(text.GetLengthInByte(), 4U);
    EXPECT_EQ(text.Text(), std::string("\xFFz\0\x80", 4));
    EXPECT_EQ(text.CastToCharPtr(), text.ConvertToChar());
    EXPECT_STREQ(text, "\xFFz");
}

TEST(UnicodeString, JoinsAndCompares)
{
    KARUnicodeString text("DoF");
    EXPECT_EQ("0" + text, "0DoF");
    EXPECT_EQ(text + "s", "DoFs");
    text.Append("!");
    text += "?";
    EXPECT_TRUE(text == "DoF!?");
    EXPECT_TRUE(text != "DoF!");
    EXPECT_TRUE(text == KARUnicodeString("DoF!?"));
    text = "x";
    EXPECT_TRUE("x" == text);
    EXPECT_TRUE(KARUnicodeString("a") < text);
    EXPECT_TRUE(text > "a");
}

TEST(UnicodeString, ReplacesEveryOccurrenceOnce)
{
    KARUnicodeString text("1,5,3");
    EXPECT_EQ(text.ReplaceAll(",", "."), 2);
    EXPECT_EQ(text, "1.5.3");
    EXPECT_EQ(text.ReplaceAll(".", ".."), 2);
    EXPECT_EQ(text, "1..5..3");
    EXPECT_EQ(text.ReplaceAll("..", ""), 2);
    EXPECT_EQ(text, "153");
    EXPECT_EQ(text.ReplaceAll("x", "y"), 0);
    EXPECT_EQ(text.ReplaceAll("", "y"), 0);
    EXPECT_EQ(text, "153");
    KARUnicodeString same("aaa");
    EXPECT_EQ(same.ReplaceAll("aa", "b"), 1);
    EXPECT_EQ(same, "ba");
    EXPECT_EQ(same.ReplaceAll(same, same + same), 1);
    EXPECT_EQ(same, "baba");
    EXPECT_EQ(same.ReplaceAll(same, same), 1);
    EXPECT_EQ(same, "baba");
}

TEST(UnicodeString, ConvertsWideTextBothWays)
{
    KARUnicodeString text("old");
    EXPECT_EQ(text.BuildFromWChar(L"h\u00E9 \u20AC \U0001F600"), 1);
    EXPECT_EQ(text, "h\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
    const std::size_t units = text.GetLengthInChar();
    EXPECT_EQ(units, std::wstring(L"h\u00E9 \u20AC \U0001F600").size());
    std::vector<wchar_t> buffer(units + 2, L'#');
    EXPECT_EQ(text.ConvertToWChar(buffer.data()), units);
    EXPECT_EQ(std::wstring(buffer.data()), L"h\u00E9 \u20AC \U0001F600");
    EXPECT_EQ(buffer[units], L'\0');
    EXPECT_EQ(buffer[units + 1], L'#');
}

TEST(UnicodeString, WideNullAndEmptyGiveTheEmptyText)
{
    KARUnicodeString text("old");
    const wchar_t* none = nullptr;
    EXPECT_EQ(text.BuildFromWChar(none), 0);
    EXPECT_EQ(text, "");
    EXPECT_EQ(text.BuildFromWChar(L""), 1);
    EXPECT_EQ(text, "");
    EXPECT_EQ(text.ConvertToWChar(nullptr), 0U);
    wchar_t end = L'#';
    EXPECT_EQ(text.ConvertToWChar(&end), 0U);
    EXPECT_EQ(end, L'\0');
}

TEST(UnicodeString, WideViewsKeepNullCharacters)
{
    KARUnicodeString text;
    EXPECT_EQ(text.BuildFromWChar(std::wstring_view(L"a\0b", 3)), 1);
    EXPECT_EQ(text.GetLengthInChar(), 3U);
    EXPECT_EQ(text.ConvertToWString(), std::wstring(L"a\0b", 3));
}

TEST(UnicodeString, PrintsIntegersAsPrintf)
{
    const std::vector<const char*> formats = {"%d",   "%i",     "%5d",     "%-5d|",  "%05d",
                                              "%+d",  "% d",    "%.4d",    "%8.4d",  "%08.4d",
                                              "%.0d", "%-+8d|", "id%d.%%", "%%%d%%", "%+05d"};
    for (const char* format : formats) {
        for (const int number : {0, 1, -1, 42, -4711, std::numeric_limits<int>::max(),
                                 std::numeric_limits<int>::min()}) {
            KARUnicodeString text("old");
            EXPECT_EQ(text.BuildFromNum(number, format), 1) << format;
            EXPECT_EQ(text.Text(), Printed(format, number)) << format;
        }
    }
}

TEST(UnicodeString, PrintsUnsignedIntegersAsPrintf)
{
    const std::vector<const char*> formats = {"%u",    "%x",    "%X",   "%o",     "%#x",
                                              "%#X",   "%#o",   "%08x", "%#010x", "%.3u",
                                              "%-6u|", "%#.0o", "%#.5o"};
    for (const char* format : formats) {
        for (const unsigned int number : {0U, 1U, 8U, 255U, std::numeric_limits<unsigned>::max()}) {
            KARUnicodeString text("old");
            EXPECT_EQ(text.BuildFromNum(number, format), 1) << format;
            EXPECT_EQ(text.Text(), Printed(format, number)) << format;
        }
    }
    KARUnicodeString text;
    EXPECT_EQ(text.BuildFromNum(-1, "%u"), 1);
    EXPECT_EQ(text, "4294967295");
}

TEST(UnicodeString, PrintsDoublesAsPrintf)
{
    const std::vector<const char*> formats = {
        "%g",   "%e",     "%f",     "%G",      "%E",  "%F",  "%le",   "%.12g", "%.0f",
        "%.3f", "%12.4e", "%-14g|", "%014.3f", "%+g", "% g", "%.17g", "%.0e",  "%lf"};
    for (const char* format : formats) {
        for (const double number : {0.0, -0.0, 1.0, -1.5, 1e-9, 1e300, 123456789.125,
                                    std::numeric_limits<double>::denorm_min(),
                                    std::numeric_limits<double>::max(), Infinity, -Infinity}) {
            KARUnicodeString text("old");
            EXPECT_EQ(text.BuildFromNum(number, format), 1) << format;
            EXPECT_EQ(text.Text(), Printed(format, number)) << format;
        }
    }
    KARUnicodeString longest;
    EXPECT_EQ(longest.BuildFromNum(std::numeric_limits<double>::max(), "%999.999f"), 1);
    EXPECT_EQ(longest.GetLengthInByte(), 309U + 1U + 999U);
}

TEST(UnicodeString, RefusedFormatsLeaveTheTextAlone)
{
    KARUnicodeString text("old");
    for (const char* format : {"", "abc", "%", "%%", "%s", "%n", "%d%d", "%d%", "%*d", "%.*d",
                               "%1000d", "%.1000d", "%ld", "%hd", "%c", "%p", "%e", "%'d"})
        EXPECT_EQ(text.BuildFromNum(7, format), 0) << format;
    for (const char* format : {"%d", "%a", "%#g", "%s", "%Lg", "%llg", "%g%g"})
        EXPECT_EQ(text.BuildFromNum(7.0, format), 0) << format;
    EXPECT_EQ(text.BuildFromNum(7U, "%s"), 0);
    const char* none = nullptr;
    EXPECT_EQ(text.BuildFromNum(7, none), 0);
    EXPECT_EQ(text, "old");
}

TEST(UnicodeString, ScansAnIntFromTheBeginning)
{
    int number = -7;
    EXPECT_EQ(KARUnicodeString("1.5").ConvertToNum(&number, "%d"), 1);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(KARUnicodeString(" \t\n-42kg").ConvertToNum(&number, "%d"), 1);
    EXPECT_EQ(number, -42);
    EXPECT_EQ(KARUnicodeString("kg").ConvertToNum(&number, "%d"), 0);
    EXPECT_EQ(KARUnicodeString("").ConvertToNum(&number, "%d"), 0);
    EXPECT_EQ(KARUnicodeString("3").ConvertToNum(&number, "%s"), 0);
    EXPECT_EQ(KARUnicodeString("3").ConvertToNum(static_cast<int*>(nullptr), "%d"), 0);
    EXPECT_EQ(KARUnicodeString("3").ConvertToNum(&number, nullptr), 0);
    EXPECT_EQ(number, -42);
}

TEST(UnicodeString, ScansADoubleFromTheBeginning)
{
    double number = -7.0;
    for (const char* format : {"%le", "%lf", "%lg", "%lE"}) {
        EXPECT_EQ(KARUnicodeString("1.5e2mm").ConvertToNum(&number, format), 1);
        EXPECT_EQ(number, 150.0);
        number = -7.0;
    }
    EXPECT_EQ(KARUnicodeString("mm").ConvertToNum(&number, "%le"), 0);
    // A scan by "%e" would fill a float.
    EXPECT_EQ(KARUnicodeString("1").ConvertToNum(&number, "%e"), 0);
    EXPECT_EQ(KARUnicodeString("1").ConvertToNum(&number, "%lex"), 0);
    EXPECT_EQ(KARUnicodeString("1").ConvertToNum(static_cast<double*>(nullptr), "%le"), 0);
    EXPECT_EQ(number, -7.0);
}

TEST(UnicodeString, NumbersDoNotFollowTheLocale)
{
    const CommaLocale locale;
    if (!locale.IsInstalled())
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    KARUnicodeString text;
    EXPECT_EQ(text.BuildFromNum(1.5, "%.3f"), 1);
    EXPECT_EQ(text, "1.500");
    double number = 0.0;
    EXPECT_EQ(KARUnicodeString("2.25").ConvertToNum(&number, "%le"), 1);
    EXPECT_EQ(number, 2.25);
    EXPECT_EQ(KARUnicodeString("2,25").ConvertToNum(&number, "%le"), 1);
    EXPECT_EQ(number, 2.0);
    EXPECT_EQ(text.BuildFromWChar(L"\u00E9"), 1);
    EXPECT_EQ(text, "\xC3\xA9");
}
