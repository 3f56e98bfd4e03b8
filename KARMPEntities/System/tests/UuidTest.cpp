#include "KARUuid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <thread>
#include <vector>

#if __has_include(<unistd.h>) && __has_include(<sys/wait.h>)
#    include <sys/wait.h>
#    include <unistd.h>
#    define KAR_TEST_FORK 1
#endif

namespace {

constexpr const char* Text = "01234567-89ab-cdef-0123-456789abcdef";

std::string TextOf(const KARUuid& uuid)
{
    char buffer[KARUuid::TextSize];
    EXPECT_EQ(uuid.UUID_to_chaine(buffer, 0), KARSuccess);
    return buffer;
}

} // namespace

TEST(Uuid, TextHasTheFormOfVersion4)
{
    for (int i = 0; i < 1000; ++i) {
        const std::string text = TextOf(KARUuid());
        ASSERT_EQ(text.size(), 36U);
        for (std::size_t index = 0; index < text.size(); ++index) {
            const bool hyphen = index == 8 || index == 13 || index == 18 || index == 23;
            const std::string allowed = hyphen        ? "-"
                                        : index == 14 ? "4"
                                        : index == 19 ? "89ab"
                                                      : "0123456789abcdef";
            ASSERT_NE(allowed.find(text[index]), std::string::npos) << text;
        }
    }
}

TEST(Uuid, TextFillsItsBufferAndNoMore)
{
    char buffer[KARUuid::TextSize + 1];
    std::fill(std::begin(buffer), std::end(buffer), '#');
    KARUuid uuid;
    ASSERT_EQ(KARUuid::FromText(Text, uuid), KARSuccess);
    EXPECT_EQ(uuid.UUID_to_chaine(buffer, 0), KARSuccess);
    EXPECT_STREQ(buffer, Text);
    EXPECT_EQ(buffer[KARUuid::TextSize], '#');
    EXPECT_EQ(uuid.UUID_to_chaine(buffer, 5), KARSuccess);
    EXPECT_STREQ(buffer, Text);
    EXPECT_EQ(uuid.UUID_to_chaine(nullptr, 0), KARFailure);
}

TEST(Uuid, CopiesAreEqualAndFreshValuesAreNot)
{
    const KARUuid first;
    const KARUuid copy(first);
    const KARUuid second;
    EXPECT_EQ(first, copy);
    EXPECT_NE(first, second);
    EXPECT_TRUE(first < second || second < first);
    EXPECT_EQ(KARUuid(first.GetBytes()), first);
}

TEST(Uuid, ReadsBackItsTextInEitherCase)
{
    const KARUuid made;
    std::string text = TextOf(made);
    KARUuid read;
    EXPECT_EQ(KARUuid::FromText(text, read), KARSuccess);
    EXPECT_EQ(read, made);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    KARUuid upper;
    EXPECT_EQ(KARUuid::FromText(text, upper), KARSuccess);
    EXPECT_EQ(upper, made);
}

TEST(Uuid, RefusesOtherTexts)
{
    const KARUuid made;
    KARUuid read(made);
    for (const char* text :
         {"", "0", "01234567-89ab-cdef-0123-456789abcde", "01234567-89ab-cdef-0123-456789abcdef0",
          "01234567089ab-cdef-0123-456789abcdef", "0123456--89ab-cdef-0123-456789abcdef",
          "g1234567-89ab-cdef-0123-456789abcdef", "01234567-89ab-cdef-0123-456789abcde "})
        EXPECT_EQ(KARUuid::FromText(text, read), KARFailure) << text;
    EXPECT_EQ(read, made);
}

TEST(Uuid, ThreadsNeverShareAValue)
{
    constexpr std::size_t Threads = 8;
    constexpr std::size_t PerThread = 20000;
    std::vector<std::vector<KARUuid>> made(Threads);
    std::vector<std::thread> threads;
    for (std::vector<KARUuid>& own : made)
        threads.emplace_back([&own] { own = std::vector<KARUuid>(PerThread); });
    for (std::thread& thread : threads)
        thread.join();
    std::set<KARUuid> all;
    for (const std::vector<KARUuid>& own : made)
        all.insert(own.begin(), own.end());
    EXPECT_EQ(all.size(), Threads * PerThread);
}

#if KAR_TEST_FORK
TEST(Uuid, AForkedChildDoesNotRepeatItsParent)
{
    const KARUuid before;
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        const KARUuid own;
        const bool written = write(channel[1], own.GetBytes().data(), 16) == 16;
        _exit(written ? 0 : 1);
    }
    const KARUuid own;
    KARUuid::Bytes bytes = {};
    EXPECT_EQ(read(channel[0], bytes.data(), bytes.size()), 16);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    close(channel[0]);
    close(channel[1]);
    EXPECT_NE(KARUuid(bytes), own);
    EXPECT_NE(KARUuid(bytes), before);
}
#endif
