#include "KARSharedText.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <array>
#include <new>
#include <optional>
#include <string>
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

TEST(SharedText, TakesANarrowTextAsTheWideOneOfItsCharacters)
{
    SharedText text;
    text.SetNarrow("first");
    const SharedText copy(text);
    EXPECT_EQ(text.Narrow(), "first");
    EXPECT_EQ(text.Get(), L"first");
    text.SetNarrow("a longer one");
    EXPECT_EQ(text.Get(), L"a longer one");
    EXPECT_EQ(copy.Get(), L"first");
    text.SetNarrow("");
    EXPECT_TRUE(text.IsNarrow());
    EXPECT_EQ(text.Get(), L"");
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

TEST(SharedText, IsNarrowWhenAllCharactersAreAscii)
{
    SharedText text;
    EXPECT_TRUE(text.IsNarrow());
    EXPECT_EQ(text.Narrow(), "");
    const std::wstring given(L"a\0b\x7F", 4);
    text.Set(given);
    EXPECT_TRUE(text.IsNarrow());
    EXPECT_EQ(text.Narrow(), std::string_view("a\0b\x7F", 4));
    EXPECT_EQ(text.Copy(), given);
    EXPECT_EQ(text.Get(), given);
}

TEST(SharedText, KeepsOtherCharacters)
{
    for (const std::wstring given : {L"\x80", L"K\u00F6rper", L"a\u20AC", L"\U0001F527"}) {
        SharedText text;
        text.Set(given);
        EXPECT_FALSE(text.IsNarrow());
        EXPECT_EQ(text.Narrow(), "");
        EXPECT_EQ(text.Copy(), given);
        EXPECT_EQ(text.Get(), given);
        const SharedText copy(text);
        text.Set(L"other");
        EXPECT_EQ(copy.Get(), given);
    }
}

TEST(SharedText, TakesItsOwnText)
{
    SharedText text;
    for (const std::wstring given : {L"narrow", L"K\u00F6rper"}) {
        text.Set(given);
        text.Set(text.Get());
        EXPECT_EQ(text.Get(), given);
    }
}

TEST(SharedText, AllocatesNothingForItsWideFormUnlessAskedForAReference)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations are not counted in this build";
    SharedText text;
    text.Set(L"id01234567-89ab-cdef-0123-456789abcdef");
    const AllocationCounter counter;
    {
        const SharedText::Wide wide(text);
        EXPECT_EQ(wide.View(), L"id01234567-89ab-cdef-0123-456789abcdef");
    }
    EXPECT_EQ(counter.Count(), 0U);
    text.Get();
    const std::size_t made = counter.Count();
    EXPECT_GT(made, 0U);
    text.Get();
    EXPECT_EQ(counter.Count(), made);
}

TEST(SharedText, HasAWideFormWhateverItsLengthAndCharacters)
{
    for (const std::wstring& given :
         {std::wstring(), std::wstring(L"a"), std::wstring(64, L'b'), std::wstring(65, L'c'),
          std::wstring(100'000, L'd'), std::wstring(L"K\u00F6rper")}) {
        SharedText text;
        text.Set(given);
        EXPECT_EQ(SharedText::Wide(text).View(), given);
    }
}

TEST(SharedText, StaysAsItIsWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    SharedText text;
    text.Set(L"former");
    const std::wstring longer(2'000, L'a');
    {
        AllocationCounter counter;
        counter.FailAllocation(1);
        EXPECT_THROW(text.Set(longer), std::bad_alloc);
        counter.FailAllocation(1);
        EXPECT_THROW(text.Get(), std::bad_alloc);
    }
    EXPECT_EQ(text.Get(), L"former");
}

TEST(SharedText, GivesThreadsOneWideForm)
{
    for (int turn = 0; turn < 200; ++turn) {
        SharedText text;
        text.Set(L"a text that is long enough");
        std::array<const std::wstring*, 4> given{};
        std::vector<std::thread> threads;
        for (const std::wstring*& pointer : given)
            threads.emplace_back([&] { pointer = &text.Get(); });
        for (std::thread& thread : threads)
            thread.join();
        for (const std::wstring* const pointer : given)
            ASSERT_EQ(pointer, given[0]);
    }
}

} // namespace
