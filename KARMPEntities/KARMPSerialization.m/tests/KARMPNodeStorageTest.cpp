#include "KARMPNodeStorage.h"

#include "AllocationCounter.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

using karmp::NodeArray;
using karmp::NodeText;
using karmp::NodeValue;

// In a process of its own: other tests fill the table of shared names.
TEST(NodeTextProcess, EqualNamesShareTheirStorage)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const NodeText first = NodeText::Name(L"a name that is shared");
    const NodeText second = NodeText::Name(std::wstring(L"a name that is shared"));
    EXPECT_EQ(first.View().data(), second.View().data());
    const AllocationCounter allocations;
    const NodeText copy = first;
    const NodeText third = NodeText::Name(L"a name that is shared");
    EXPECT_EQ(copy.View().data(), third.View().data());
    EXPECT_EQ(allocations.Count(), 0U);
}

TEST(NodeText, OtherTextsAreCopied)
{
    const NodeText first = NodeText::Copy(L"text");
    const NodeText second = first;
    EXPECT_EQ(second.View(), L"text");
    EXPECT_NE(first.View().data(), second.View().data());
}

TEST(NodeText, ALongStringIsTakenOverWithItsCharacters)
{
    std::wstring text(1000, L't');
    const wchar_t* const characters = text.data();
    const NodeText taken = NodeText::Take(std::move(text));
    EXPECT_EQ(taken.View().data(), characters);
    const NodeText copy = taken;
    EXPECT_EQ(copy.View(), std::wstring(1000, L't'));
    EXPECT_EQ(NodeText::Take(std::wstring(L"short")).View(), L"short");
}

TEST(NodeText, AnEmptyTextTakesNoMemory)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const AllocationCounter allocations;
    EXPECT_TRUE(NodeText().View().empty());
    EXPECT_TRUE(NodeText::Name(L"").View().empty());
    EXPECT_TRUE(NodeText::Copy(L"").View().empty());
    EXPECT_TRUE(NodeText::Take(std::wstring()).View().empty());
    EXPECT_EQ(allocations.Count(), 0U);
}

TEST(NodeText, AssignmentToItselfChangesNothing)
{
    NodeText text = NodeText::Copy(L"text");
    const NodeText& same = text;
    text = same;
    EXPECT_EQ(text.View(), L"text");
}

TEST(NodeText, MoreNamesThanTheTableHoldsAreStillNames)
{
    std::vector<NodeText> names;
    for (int number = 0; number < 20000; ++number)
        names.push_back(NodeText::Name(L"crowd" + std::to_wstring(number)));
    for (int number = 0; number < 20000; ++number) {
        const std::wstring name = L"crowd" + std::to_wstring(number);
        ASSERT_EQ(names[static_cast<std::size_t>(number)].View(), name);
        ASSERT_EQ(NodeText::Name(name).View(), name);
    }
}

TEST(NodeText, ThreadsThatMeetANameTogetherShareIt)
{
    constexpr int Count = 500;
    std::vector<std::vector<const wchar_t*>> found(4);
    std::vector<std::thread> threads;
    for (std::vector<const wchar_t*>& list : found) {
        threads.emplace_back([&list] {
            for (int number = 0; number < Count; ++number) {
                const NodeText name = NodeText::Name(L"met" + std::to_wstring(number));
                list.push_back(name.View() == L"met" + std::to_wstring(number) ? name.View().data()
                                                                               : nullptr);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const std::vector<const wchar_t*>& list : found) {
        ASSERT_EQ(list.size(), static_cast<std::size_t>(Count));
        for (const wchar_t* const characters : list)
            EXPECT_NE(characters, nullptr);
    }
}

TEST(NodeValue, TypesAreTheBitsOfTheAlternatives)
{
    EXPECT_EQ(karmp::TypeOf(NodeValue()), KARMPSerializationVariable::None);
    EXPECT_EQ(karmp::TypeOf(NodeValue(true)), KARMPSerializationVariable::Bool);
    EXPECT_EQ(karmp::TypeOf(NodeValue(1)), KARMPSerializationVariable::Int);
    EXPECT_EQ(karmp::TypeOf(NodeValue(1.0)), KARMPSerializationVariable::Double);
    EXPECT_EQ(karmp::TypeOf(NodeValue(NodeText())), KARMPSerializationVariable::String);
    EXPECT_EQ(int{KARMPSerializationVariable::None}, 0);
    EXPECT_EQ(int{KARMPSerializationVariable::Bool}, 1);
    EXPECT_EQ(int{KARMPSerializationVariable::Int}, 2);
    EXPECT_EQ(int{KARMPSerializationVariable::Double}, 4);
    EXPECT_EQ(int{KARMPSerializationVariable::String}, 8);
}

TEST(NodeValue, APlainVariableStartsWithItsDefaults)
{
    const KARMPSerializationVariable variable;
    EXPECT_EQ(variable.name, L"");
    EXPECT_EQ(variable.type, KARMPSerializationVariable::None);
    EXPECT_EQ(variable.value.reserved, 0U);
    EXPECT_FALSE(variable.value.boolValue);
    EXPECT_EQ(variable.value.intValue, -1);
    EXPECT_EQ(variable.value.doubleValue, -1.0);
    EXPECT_EQ(variable.value.stringValue, L"");
}

TEST(NodeArray, KeepsItsElementsWhileItGrows)
{
    NodeArray<NodeText> list;
    EXPECT_EQ(list.size(), 0U);
    EXPECT_EQ(list.begin(), list.end());
    for (int number = 0; number < 1000; ++number)
        list.Append(NodeText::Copy(std::to_wstring(number)));
    ASSERT_EQ(list.size(), 1000U);
    for (std::size_t number = 0; number < 1000; ++number)
        EXPECT_EQ(list[number].View(), std::to_wstring(number));
    list.Clear();
    EXPECT_EQ(list.size(), 0U);
}
