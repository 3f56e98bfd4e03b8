#include "KARTextHash.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

namespace {

TEST(TextHash, IsTheSameForBothFormsOfAnAsciiText)
{
    std::string text;
    for (int size = 0; size < 100; ++size) {
        const std::wstring wide(text.begin(), text.end());
        EXPECT_EQ(kar::HashText(text).hash, kar::HashText(wide).hash) << size;
        EXPECT_TRUE(kar::HashText(text).isAscii);
        EXPECT_TRUE(kar::HashText(wide).isAscii);
        text += static_cast<char>('!' + size % 90);
    }
}

TEST(TextHash, TellsWhereverACharacterIsNotAscii)
{
    for (std::size_t size = 1; size < 40; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            std::string text(size, 'a');
            text[at] = '\xE4';
            EXPECT_FALSE(kar::HashText(text).isAscii) << size << ' ' << at;
            std::wstring wide(size, L'a');
            wide[at] = L'\u0161'; // its low byte is that of an 'a'
            EXPECT_FALSE(kar::HashText(wide).isAscii);
            EXPECT_NE(kar::HashText(wide).hash, kar::HashText(std::wstring(size, L'a')).hash);
        }
    }
}

TEST(TextHash, DiffersForTextsOfAnyLengthAndEndings)
{
    std::set<std::uint64_t> hashes;
    std::size_t texts = 0;
    for (std::size_t size = 0; size < 40; ++size) {
        for (const char last : {'\0', 'a', 'b'}) {
            std::string text(size, '\0');
            if (size > 0)
                text.back() = last;
            if (size > 0 || last == 'a') {
                hashes.insert(kar::HashText(text).hash);
                ++texts;
            }
        }
    }
    EXPECT_EQ(hashes.size(), texts);
}

// Two changed bits of a text, one in each of two words, never take each other back for all seeds.
TEST(TextHash, HasNoPairOfBitsThatCannotBeSeen)
{
    std::mt19937_64 random(7);
    const std::string text = "0123456789abcdef";
    for (unsigned first = 0; first < 64; ++first) {
        for (unsigned second = 64; second < 128; ++second) {
            std::string changed = text;
            changed[first / 8] = static_cast<char>(changed[first / 8] ^ (1 << first % 8));
            changed[second / 8] = static_cast<char>(changed[second / 8] ^ (1 << second % 8));
            int same = 0;
            for (int i = 0; i < 8; ++i) {
                const std::uint64_t seed = random();
                same += kar::HashText(text, seed).hash >> 32U ==
                                kar::HashText(changed, seed).hash >> 32U
                            ? 1
                            : 0;
            }
            ASSERT_LT(same, 2) << first << ' ' << second;
        }
    }
}

// Texts that share the low bits of their hashes for one seed are spread for another.
TEST(TextHash, SpreadsTheTextsThatShareAHashForAnotherSeed)
{
    std::set<std::uint64_t> spread;
    std::size_t chosen = 0;
    for (std::uint64_t number = 0; chosen < 200; ++number) {
        const std::string text = "identifier " + std::to_string(number);
        if (kar::HashText(text, 1).hash % 1'024 != 5)
            continue;
        ++chosen;
        spread.insert(kar::HashText(text, 2).hash % 1'024);
    }
    EXPECT_GT(spread.size(), 150U);
}

} // namespace
