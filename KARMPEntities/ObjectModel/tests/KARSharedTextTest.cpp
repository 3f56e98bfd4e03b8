#include "KARSharedText.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <vector>

namespace {

using kar::SharedText;

TEST(SharedText, IsEmptyAtFirst)
{
    const SharedText text;
    EXPECT_EQ(text.Get(), L"");
    const SharedText copy(text);
    EXPECT_EQ(copy.Get(), L"");
}

TEST(SharedText, SharesTheTextWithCopies)
{
    SharedText text;
    text.Set(L"a text that is long enough");
    const SharedText copy(text);
    EXPECT_EQ(copy.Get(), L"a text that is long enough");
    EXPECT_EQ(&copy.Get(), &text.Get());
}

TEST(SharedText, KeepsTheTextOfCopiesWhenItGetsAnotherOne)
{
    SharedText text;
    text.Set(L"first");
    SharedText copy(text);
    text.Set(L"second");
    EXPECT_EQ(text.Get(), L"second");
    EXPECT_EQ(copy.Get(), L"first");
    copy.Set(L"");
    EXPECT_EQ(text.Get(), L"second");
    EXPECT_EQ(copy.Get(), L"");
    const SharedText ofText(text);
    text.Set(L"");
    EXPECT_EQ(text.Get(), L"");
    EXPECT_EQ(ofText.Get(), L"second");
}

TEST(SharedText, OutlivesWhatItWasCopiedFrom)
{
    std::optional<SharedText> text(std::in_place);
    text->Set(L"a text that is long enough");
    const SharedText copy(*text);
    text.reset();
    EXPECT_EQ(copy.Get(), L"a text that is long enough");
}

TEST(SharedText, IsCopiedByThreadsAtOnce)
{
    SharedText text;
    text.Set(L"a text that is long enough");
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count)
        threads.emplace_back([&text] {
            for (int turn = 0; turn < 10'000; ++turn) {
                SharedText copy(text);
                ASSERT_EQ(copy.Get().size(), 26U);
                if (turn % 3 == 0)
                    copy.Set(L"another");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    const SharedText copy(text);
    text.Set(L"other");
    EXPECT_EQ(copy.Get(), L"a text that is long enough");
}

} // namespace
