#include "KARTextConversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

using kar::DecimalMark;
using kar::ScanDouble;
using kar::ScanInt;
using kar::ToUtf8;
using kar::ToWide;

namespace {

std::wstring Widened(const std::string& text)
{
    return std::wstring(text.begin(), text.end());
}

// The C library's scan, in the "C" locale that the tests run in.
int LibraryScan(const std::string& text, double& value)
{
    return std::max(std::sscanf(text.c_str(), "%le", &value), 0);
}

void ExpectSameAsLibrary(const std::string& text)
{
    constexpr double Untouched = -77.125;
    double expected = Untouched;
    double narrow = Untouched;
    double wide = Untouched;
    const int items = LibraryScan(text, expected);
    EXPECT_EQ(ScanDouble(text, narrow), items) << text;
    EXPECT_EQ(ScanDouble(Widened(text), wide), items) << text;
    EXPECT_EQ(std::isnan(narrow), std::isnan(expected)) << text;
    EXPECT_EQ(std::signbit(narrow), std::signbit(expected)) << text;
    if (!std::isnan(expected)) {
        EXPECT_EQ(narrow, expected) << text;
        EXPECT_EQ(wide, expected) << text;
    }
}

} // namespace

TEST(Utf8, EveryValueOf32BitsComesBack)
{
    if (sizeof(wchar_t) < 4)
        GTEST_SKIP() << "wchar_t holds no value of 32 bits here";
    for (const std::uint32_t value :
         {0x0U,       0x7FU,      0x80U,       0x7FFU,      0x800U,     0xD7FFU,
          0xD800U,    0xDBFFU,    0xDC00U,     0xDFFFU,     0xE000U,    0xFFFDU,
          0xFFFFU,    0x10000U,   0x10FFFFU,   0x110000U,   0x1FFFFFU,  0x200000U,
          0x3FFFFFFU, 0x4000000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        const std::wstring text = {L'a', static_cast<wchar_t>(value), L'z'};
        EXPECT_EQ(ToWide(ToUtf8(text)), text) << value;
        EXPECT_EQ(kar::WideLength(ToUtf8(text)), 3U) << value;
    }
    const std::wstring pair = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
    EXPECT_EQ(ToWide(ToUtf8(pair)), pair);
}

TEST(Utf8, CharactersHaveTheirStandardBytes)
{
    EXPECT_EQ(ToUtf8(L"A\u00DF\u20AC\U0001F600"), "A\xC3\x9F\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf8(L"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(ToUtf8({}), "");
    EXPECT_EQ(ToWide({}), L"");
}

TEST(Utf8, EveryByteComesBack)
{
    std::string all;
    for (int value = 0; value < 256; ++value) {
        const std::string one(1, static_cast<char>(value));
        const std::wstring wide = ToWide(one);
        EXPECT_EQ(wide,
                  std::wstring(1, static_cast<wchar_t>(value < 0x80 ? value : 0xDC00 + value)));
        EXPECT_EQ(ToUtf8(wide), one) << value;
        all += one;
    }
    EXPECT_EQ(ToUtf8(ToWide(all)), all);
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string two = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(ToUtf8(ToWide(two)), two) << first << ' ' << second;
        }
    }
}

TEST(Utf8, BytesThatBelongToNoCharacterComeBack)
{
    const auto units = [](std::initializer_list<int> values) {
        std::wstring text;
        for (const int value : values)
            text.push_back(static_cast<wchar_t>(value));
        return text;
    };
    const std::vector<std::pair<std::string, std::wstring>> cases{
        {"a\xC3", units({'a', 0xDCC3})},
        {"\xC3z", units({0xDCC3, 'z'})},
        {"\xE2\x82z", units({0xDCE2, 0xDC82, 'z'})},
        {"\xF0\x9F\x98", units({0xDCF0, 0xDC9F, 0xDC98})},
        {"\xC0\x80", units({0xDCC0, 0xDC80})},
        {"\xE0\x80\xAF", units({0xDCE0, 0xDC80, 0xDCAF})},
        {"\xFF\xC3\xA4", units({0xDCFF, 0xE4})},
        // Encoded units of bytes, which encode nothing here.
        {"\xED\xB2\x80", units({0xDCED, 0xDCB2, 0xDC80})},
        {"\xED\xB3\x83", units({0xDCED, 0xDCB3, 0xDC83})},
        {"\xED\xB3\x83z", units({0xDCED, 0xDCB3, 0xDC83, 'z'})},
        // Here it keeps a byte apart from the next one.
        {"\xED\xB3\x83\xA4", units({0xDCC3, 0xDCA4})},
        {"\xED\xB3\xAD\xB3\x83\xA4", units({0xDCED, 0xDCB3, 0xDC83, 0xDCA4})},
    };
    for (const auto& [bytes, wide] : cases) {
        EXPECT_EQ(ToWide(bytes), wide) << testing::PrintToString(bytes);
        EXPECT_EQ(ToUtf8(wide), bytes) << testing::PrintToString(wide);
        EXPECT_EQ(kar::WideLength(bytes), wide.size());
    }
}

TEST(Utf8, OtherSurrogatesKeepTheirEncoding)
{
    if (sizeof(wchar_t) < 4)
        GTEST_SKIP() << "two encoded surrogates make a pair here";
    for (const int value : {0xD800, 0xDBFF, 0xDC00, 0xDC7F, 0xDD00, 0xDFFF}) {
        const std::wstring wide(1, static_cast<wchar_t>(value));
        EXPECT_EQ(ToUtf8(wide).size(), 3U);
        EXPECT_EQ(ToWide(ToUtf8(wide)), wide);
    }
}

// Of few letters that combine to characters, encoded units and all that is close to them.
TEST(Utf8, NoTwoTextsHaveTheSameBytesAndNoTwoSequencesOfBytesTheSameText)
{
    if (sizeof(wchar_t) < 4)
        GTEST_SKIP() << "wchar_t holds no value of 32 bits here";
    constexpr std::string_view Bytes = "\xED\xED\xB3\xB3\xB2\xAD\xAD\x83\x83\xA4\xC3\xC0\x80"
                                       "\xF0\x9F\x98\xE2\xFE\xFFz";
    constexpr int Units[] = {0xDCED, 0xDCED, 0xDCB3, 0xDCB3, 0xDCB2, 0xDCAD,  0xDCAD,
                             0xDC83, 0xDC83, 0xDCA4, 0xDCC3, 0xDCC0, 0xDC80,  0xDC7F,
                             0xDD00, 0xD83D, 0xE4,   'z',    0xFFFD, 0x1F600, 0x110000};
    std::mt19937 random(20260611);
    std::uniform_int_distribution<std::size_t> byte(0, Bytes.size() - 1);
    std::uniform_int_distribution<std::size_t> unit(0, std::size(Units) - 1);
    for (int round = 0; round < 100000; ++round) {
        const auto length = static_cast<std::size_t>(round % 17);
        std::string bytes;
        std::wstring wide;
        for (std::size_t i = 0; i < length; ++i) {
            bytes.push_back(Bytes[byte(random)]);
            wide.push_back(static_cast<wchar_t>(Units[unit(random)]));
        }
        ASSERT_EQ(ToUtf8(ToWide(bytes)), bytes) << testing::PrintToString(bytes);
        ASSERT_EQ(ToWide(ToUtf8(wide)), wide) << testing::PrintToString(wide);
    }
}

TEST(Utf8, LongChainsOfEncodedUnitsComeBack)
{
    // ED B3 AD is the encoded unit of ED, which B3 AD continue to the next.
    std::string chain = "\xED";
    for (int i = 0; i < 100000; ++i)
        chain += "\xB3\xAD";
    for (const char* const end : {"", "\xB3\x83\xA4", "\x80\x80"}) {
        const std::string bytes = chain + end;
        EXPECT_TRUE(ToUtf8(ToWide(bytes)) == bytes);
    }
}

TEST(Utf8, LengthAgreesWithTheTextForAnyBytes)
{
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(static_cast<std::size_t>(round % 23), '\0');
        for (char& one : bytes)
            one = static_cast<char>(byte(random));
        const std::wstring wide = ToWide(bytes);
        ASSERT_EQ(kar::WideLength(bytes), wide.size());
        ASSERT_EQ(ToWide(ToUtf8(wide)), wide);
        ASSERT_EQ(ToUtf8(wide), bytes);
    }
}

TEST(ScanDouble, AgreesWithTheLibraryOnEveryForm)
{
    for (const char* text : {"",
                             "1",
                             "-1",
                             "+1",
                             "1.5",
                             ".5",
                             "5.",
                             ".",
                             "+",
                             "-",
                             "+.5",
                             "- 1",
                             "+-1",
                             "--1",
                             "1e",
                             "1e+",
                             "1ex",
                             "1e5",
                             "1E5",
                             "1e+05",
                             "1e-5",
                             "1e2.5",
                             "0x",
                             "0x.",
                             "0xg",
                             "0x1",
                             "0X1F",
                             "0x1p3",
                             "0x1P-3",
                             "0x1p",
                             "0x1p+",
                             "0x.8p1",
                             "0x1.8",
                             "0x1e+2",
                             "00x1",
                             "-0x1p-1074",
                             "0x1p-1075",
                             "0x1.8p-1075",
                             "0x1p-1080",
                             "0x1p1023",
                             "0x1p1024",
                             "0x1.fffffffffffff8p1023",
                             "inf",
                             "INF",
                             "in",
                             "infi",
                             "infinit",
                             "infinity",
                             "-Infinity",
                             "infx",
                             "infinityx",
                             "nan",
                             "NaN",
                             "-nan",
                             "na",
                             "nanx",
                             "1p3",
                             "1.5.3",
                             "1_0",
                             "0",
                             "-0",
                             "-0.0",
                             "0e0",
                             "0e",
                             "0e99999999999999",
                             "0.0e-99999999999999",
                             "1e400",
                             "-1e400",
                             "1e-400",
                             "-1e-400",
                             "1e99999999999999999999",
                             "1e-99999999999999999999",
                             "4.9e-324",
                             "2e-324",
                             "2.5e-324",
                             "2.2250738585072011e-308",
                             "1.7976931348623157e308",
                             "1.7976931348623159e308",
                             "17976931348623159e292",
                             "0.1",
                             "123456789012345678901234567890",
                             "9007199254740993",
                             "1,5",
                             " 1",
                             "\t\n\v\f\r 1",
                             "1 2",
                             "e5",
                             "x",
                             "0b1"})
        ExpectSameAsLibrary(text);
}

TEST(ScanDouble, AgreesWithTheLibraryOnRandomTexts)
{
    constexpr std::string_view Alphabet = "0123456789.+-eExXpPinfaINF ";
    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> letter(0, Alphabet.size() - 1);
    for (int round = 0; round < 20000; ++round) {
        std::string text(static_cast<std::size_t>(round % 12), ' ');
        for (char& character : text)
            character = Alphabet[letter(random)];
        ExpectSameAsLibrary(text);
    }
}

TEST(ScanDouble, AgreesWithTheLibraryOnLongTexts)
{
    const std::string zeros(5000, '0');
    ExpectSameAsLibrary("0." + zeros + "12345e5000");
    ExpectSameAsLibrary("0." + zeros + "12345e4000");
    ExpectSameAsLibrary("0." + zeros + "12345e5400");
    ExpectSameAsLibrary("1" + zeros + "e-5000");
    ExpectSameAsLibrary("1" + zeros + "e-5400");
    ExpectSameAsLibrary("1" + zeros);
    ExpectSameAsLibrary(zeros + "7");
    ExpectSameAsLibrary(std::string(127, '1'));
    ExpectSameAsLibrary(std::string(128, '1'));
    ExpectSameAsLibrary(std::string(129, '1'));
}

TEST(ScanDouble, TakesTheCommaOnlyWhenTold)
{
    double value = 0.0;
    EXPECT_EQ(ScanDouble(L"1,5", value), 1);
    EXPECT_EQ(value, 1.0);
    EXPECT_EQ(ScanDouble(L"1,5", value, DecimalMark::PointOrComma), 1);
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(ScanDouble(L"1.25", value, DecimalMark::PointOrComma), 1);
    EXPECT_EQ(value, 1.25);
    EXPECT_EQ(ScanDouble(L"-,5e1", value, DecimalMark::PointOrComma), 1);
    EXPECT_EQ(value, -5.0);
    EXPECT_EQ(ScanDouble(L"1,5,3", value, DecimalMark::PointOrComma), 1);
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(ScanDouble(L",", value, DecimalMark::PointOrComma), 0);
}

TEST(IsNumber, IsTrueForWholeDecimalNumbersThatFit)
{
    for (const wchar_t* const text :
         {L"0", L"-1", L"+1.5", L".5", L"5.", L" 1e3 ", L"\t1E-3\n", L"inf", L"-INFINITY", L"nan",
          L"1.7976931348623157e308", L"1e-999", L"0e999"})
        EXPECT_TRUE(kar::IsNumber(text)) << kar::ToUtf8(text);
    for (const wchar_t* const text :
         {L"", L" ", L"-", L".", L"1.5.2", L"0x10", L"0x1p3", L"1e", L"1e+", L"0.5 0.6", L"1e999",
          L"-1e309", L"1,5", L"1 kg", L"infi", L"nano", L"much", L"1\u0664"})
        EXPECT_FALSE(kar::IsNumber(text)) << kar::ToUtf8(text);
    EXPECT_FALSE(kar::IsNumber(std::wstring(400, L'9')));
    EXPECT_TRUE(kar::IsNumber(std::wstring(400, L'0')));
    EXPECT_TRUE(kar::IsNumber(L"1,5", DecimalMark::PointOrComma));
    EXPECT_FALSE(kar::IsNumber(L"1,5,3", DecimalMark::PointOrComma));
}

TEST(IsInteger, IsTrueForWholeNumbersThatFit)
{
    for (const wchar_t* const text : {L"0", L"-1", L"+12", L" 3 ", L"2147483647", L"-2147483648"})
        EXPECT_TRUE(kar::IsInteger(text)) << kar::ToUtf8(text);
    for (const wchar_t* const text :
         {L"", L"-", L"1.5", L"1e3", L"0x1", L"1 2", L"2147483648", L"-2147483649", L"one"})
        EXPECT_FALSE(kar::IsInteger(text)) << kar::ToUtf8(text);
}

TEST(ScanDouble, StopsAtCharactersOutsideAscii)
{
    double value = 0.0;
    EXPECT_EQ(ScanDouble(std::wstring_view(L"1\0"
                                           L"2",
                                           3),
                         value),
              1);
    EXPECT_EQ(value, 1.0);
    EXPECT_EQ(ScanDouble(L"3\u0664", value), 1);
    EXPECT_EQ(value, 3.0);
    // Values whose low byte is a digit or blank are still other characters.
    EXPECT_EQ(ScanDouble(L"\u0131", value), 0);
    EXPECT_EQ(ScanDouble(L"\u01201", value), 0);
    const std::wstring negative = {static_cast<wchar_t>(0xFFFFFF31U)};
    EXPECT_EQ(ScanDouble(negative, value), 0);
    EXPECT_EQ(ScanDouble("\xA0"
                         "1",
                         value),
              0);
    EXPECT_EQ(value, 3.0);
}

TEST(ScanInt, TakesTheLongestPrefix)
{
    int value = -7;
    EXPECT_EQ(ScanInt(L"1.5", value), 1);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(ScanInt(L" \t+12x", value), 1);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(ScanInt("0x10", value), 1);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(ScanInt("-007", value), 1);
    EXPECT_EQ(value, -7);
    for (const wchar_t* text : {L"", L" ", L"+", L"- 4", L"x", L".5", L"\u0664", L"+-1"})
        EXPECT_EQ(ScanInt(text, value), 0);
    EXPECT_EQ(value, -7);
}

TEST(ScanInt, ANumberThatDoesNotFitCountsAsNone)
{
    int value = 5;
    EXPECT_EQ(ScanInt("2147483648", value), 0);
    EXPECT_EQ(ScanInt("-2147483649", value), 0);
    EXPECT_EQ(ScanInt(std::string(400, '9'), value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(ScanInt("2147483647", value), 1);
    EXPECT_EQ(value, std::numeric_limits<int>::max());
    EXPECT_EQ(ScanInt("-2147483648", value), 1);
    EXPECT_EQ(value, std::numeric_limits<int>::min());
    EXPECT_EQ(ScanInt(std::string(400, '0') + "3", value), 1);
    EXPECT_EQ(value, 3);
}
