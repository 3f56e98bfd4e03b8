#include "KARBase64.h"
#include "KARSysTSCodePage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <random>

namespace {

using Octets = std::vector<unsigned char>;

Octets OctetsOf(std::string_view text)
{
    return Octets(text.begin(), text.end());
}

std::wstring Widened(const std::string& text)
{
    return std::wstring(text.begin(), text.end());
}

// Frees what a converter returns.
template <typename T>
std::unique_ptr<T, decltype(&std::free)> Owned(T* memory)
{
    return {memory, &std::free};
}

struct Vector
{
    const char* plain;
    const char* text;
};

constexpr Vector Known[] = {{"", ""},
                            {"f", "Zg=="},
                            {"fo", "Zm8="},
                            {"foo", "Zm9v"},
                            {"foob", "Zm9vYg=="},
                            {"fooba", "Zm9vYmE="},
                            {"foobar", "Zm9vYmFy"},
                            {"\xFB\xFF\xBF", "+/+/"}};

constexpr const char* Hostile[] = {
    "Z",        "Zg",        "Zg=",      "Zm9",      "Zm9vY",      "=",
    "==",       "===",       "====",     "Z===",     "Zg=x",       "Z=g=",
    "=Zg=",     "Zg==Zg==",  "Zm8=Zm9v", "Zm9v====", "Zm9v\n",     "Zm9v Zm9v",
    "Zm9\n",    " Zm9",      "Zm-v",     "Zm_v",     "Zm9\x80",    "\xFF\xFF\xFF\xFF",
    "Zh==",     "Zm9=",      "Zm9vYh==", "Zm8=\n",   "Z\xC3\xA9v", "????",
    "Zm9vZm9.", "Zg\x3D\x01"};

} // namespace

TEST(Base64, EncodesTheKnownVectors)
{
    for (const Vector& known : Known) {
        const Octets octets = OctetsOf(known.plain);
        EXPECT_EQ(kar::Base64Encode(octets), known.text);
        EXPECT_EQ(kar::Base64EncodeWide(octets), Widened(known.text));
        EXPECT_EQ(kar::Base64EncodedSize(octets.size()), std::string(known.text).size());
    }
}

TEST(Base64, DecodesTheKnownVectors)
{
    for (const Vector& known : Known) {
        Octets octets = {1, 2, 3};
        EXPECT_TRUE(kar::Base64Decode(std::string_view(known.text), octets));
        EXPECT_EQ(octets, OctetsOf(known.plain));
        EXPECT_TRUE(kar::Base64Decode(Widened(known.text), octets));
        EXPECT_EQ(octets, OctetsOf(known.plain));
        std::size_t size = 99;
        EXPECT_TRUE(kar::Base64DecodedSize(known.text, size));
        EXPECT_EQ(size, octets.size());
    }
}

TEST(Base64, RefusesWhatIsNotStrict)
{
    for (const char* text : Hostile) {
        Octets octets = {1, 2, 3};
        EXPECT_FALSE(kar::Base64Decode(std::string_view(text), octets)) << text;
        EXPECT_TRUE(octets.empty()) << text;
    }
    Octets octets;
    EXPECT_FALSE(kar::Base64Decode(std::string_view("Zm9\0", 4), octets));
    // Characters whose low byte is in the alphabet.
    EXPECT_FALSE(kar::Base64Decode(std::wstring_view(L"Zm9\u0176"), octets));
    EXPECT_FALSE(kar::Base64Decode(std::wstring_view(L"Zg=\u013D"), octets));
    const std::wstring negative = {L'Z', L'm', L'9', static_cast<wchar_t>(0xFFFFFF76U)};
    EXPECT_FALSE(kar::Base64Decode(negative, octets));
}

TEST(Base64, EveryByteOutsideTheAlphabetIsRefused)
{
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    Octets octets;
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        const bool valid = alphabet.find(character) != std::string::npos;
        for (std::size_t index = 0; index < 4; ++index) {
            std::string text = "AAAAAAAA";
            text[index] = character;
            EXPECT_EQ(kar::Base64Decode(text, octets), valid) << code;
        }
    }
}

TEST(Base64, AnyBytesComeBack)
{
    std::mt19937 random(64);
    std::uniform_int_distribution<int> byte(0, 255);
    for (std::size_t size = 0; size < 300; ++size) {
        Octets octets(size);
        for (unsigned char& octet : octets)
            octet = static_cast<unsigned char>(byte(random));
        Octets back;
        ASSERT_TRUE(kar::Base64Decode(kar::Base64Encode(octets), back));
        ASSERT_EQ(back, octets);
        ASSERT_TRUE(kar::Base64Decode(kar::Base64EncodeWide(octets), back));
        ASSERT_EQ(back, octets);
    }
}

TEST(CodePage, ConvertsBothWays)
{
    for (const Vector& known : Known) {
        const Octets octets = OctetsOf(known.plain);
        char* text = nullptr;
        ASSERT_EQ(
            KARSysTSCodePage::ConvertToBase64(octets.data(), static_cast<int>(octets.size()), text),
            KARSuccess);
        const auto ownedText = Owned(text);
        EXPECT_STREQ(text, known.text);

        unsigned char* bytes = nullptr;
        std::int32_t count = -1;
        ASSERT_EQ(KARSysTSCodePage::ConvertFromBase64(text, bytes, count), KARSuccess);
        const auto ownedBytes = Owned(bytes);
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(Octets(bytes, bytes + count), octets);
    }
}

TEST(CodePage, TheLongFormConvertsBothWays)
{
    const Octets octets = OctetsOf("foobar!");
    char* text = nullptr;
    ASSERT_EQ(KARSysTSCodePage64::ConvertToBase64(octets.data(), octets.size(), text), KARSuccess);
    const auto ownedText = Owned(text);
    EXPECT_STREQ(text, "Zm9vYmFyIQ==");
    unsigned char* bytes = nullptr;
    std::uint64_t count = 0;
    ASSERT_EQ(KARSysTSCodePage64::ConvertFromBase64(text, bytes, count), KARSuccess);
    const auto ownedBytes = Owned(bytes);
    EXPECT_EQ(Octets(bytes, bytes + count), octets);
}

TEST(CodePage, BadTextGivesANullResult)
{
    for (const char* text : Hostile) {
        unsigned char byte = 0;
        unsigned char* bytes = &byte;
        std::int32_t count = 7;
        EXPECT_EQ(KARSysTSCodePage::ConvertFromBase64(text, bytes, count), KARFailure) << text;
        EXPECT_EQ(bytes, nullptr);
        EXPECT_EQ(count, 0);
        bytes = &byte;
        std::uint64_t longCount = 7;
        EXPECT_EQ(KARSysTSCodePage64::ConvertFromBase64(text, bytes, longCount), KARFailure);
        EXPECT_EQ(bytes, nullptr);
        EXPECT_EQ(longCount, 0U);
    }
    unsigned char* bytes = nullptr;
    std::int32_t count = 7;
    EXPECT_EQ(KARSysTSCodePage::ConvertFromBase64(nullptr, bytes, count), KARFailure);
    EXPECT_EQ(count, 0);
}

TEST(CodePage, BadArgumentsGiveANullText)
{
    char former = 'x';
    char* text = &former;
    EXPECT_EQ(KARSysTSCodePage::ConvertToBase64(nullptr, 3, text), KARFailure);
    EXPECT_EQ(text, nullptr);
    text = &former;
    EXPECT_EQ(KARSysTSCodePage::ConvertToBase64("abc", -1, text), KARFailure);
    EXPECT_EQ(text, nullptr);
    text = &former;
    constexpr std::uint64_t Hugest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(KARSysTSCodePage64::ConvertToBase64("abc", Hugest, text), KAROutOfMemory);
    EXPECT_EQ(text, nullptr);
    ASSERT_EQ(KARSysTSCodePage::ConvertToBase64(nullptr, 0, text), KARSuccess);
    const auto owned = Owned(text);
    EXPECT_STREQ(text, "");
}
