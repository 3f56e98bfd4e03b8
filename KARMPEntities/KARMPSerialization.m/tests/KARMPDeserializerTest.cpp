#include "KARMPDeserializer.h"

#include "KARMPTestFixture.h"
#include "KARTextConversion.h"
#include "TestDeserializer.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <string_view>
#include <vector>

class Deserializer : public KARMPTestFixture
{
protected:
    using Node = const KARMPDeserializer*;
    using ElementIterator = KARMPDeserializer::ElementIterator;

    static std::wstring NextId(const KARMPDeserializer& node, std::wstring_view name)
    {
        Node child = nullptr;
        EXPECT_EQ(node.GetElement(name, child), KARSuccess);
        return child != nullptr ? std::wstring(child->Id()) : L"none";
    }

    // Adds children whose own names tell them apart from others under the same name.
    static void AddGroup(TestDeserializer& node, std::wstring_view name,
                         const std::vector<std::wstring>& ids)
    {
        for (const std::wstring& id : ids)
            ASSERT_EQ(node.AddElement(name, new TestDeserializer(id)), KARSuccess);
    }

    template <class Elements>
    static std::vector<std::wstring> Ids(const Elements& elements)
    {
        std::vector<std::wstring> ids;
        for (const KARMPDeserializer* element : elements)
            ids.emplace_back(element->Id());
        return ids;
    }

    using Names = std::vector<std::wstring>;
};

TEST_F(Deserializer, ANewNodeIsEmptyAndAtTheCurrentVersion)
{
    TestDeserializer node;
    std::wstring text = L"what was there before";
    EXPECT_EQ(node.GetVersion(text), KARSuccess);
    EXPECT_EQ(text, L"R2018.1");
    EXPECT_EQ(node.GetId(text), KARSuccess);
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(node.HasAttribute(L""));
    EXPECT_FALSE(node.HasElement(L""));
    KARMPDeserializer::ElementList elements;
    EXPECT_EQ(node.GetElements(elements), KARSuccess);
    EXPECT_EQ(node.GetOrderedElementList(elements), KARSuccess);
    EXPECT_TRUE(elements.empty());
}

TEST_F(Deserializer, TheNameAndTheVersionAreHandedOut)
{
    TestDeserializer node(L"Body");
    EXPECT_EQ(node.SetVersion(L"R2016.0"), KARSuccess);
    std::wstring text;
    node.GetId(text);
    EXPECT_EQ(text, L"Body");
    node.GetVersion(text);
    EXPECT_EQ(text, L"R2016.0");
}

TEST_F(Deserializer, AMissingElementIsNullWithoutAFailure)
{
    TestDeserializer node;
    Node child = &node;
    EXPECT_EQ(node.GetElement(L"Missing", child), KARSuccess);
    EXPECT_EQ(child, nullptr);
    node.Add(L"Other");
    child = &node;
    EXPECT_EQ(node.GetElement(L"Missing", child), KARSuccess);
    EXPECT_EQ(child, nullptr);
}

TEST_F(Deserializer, AMissingElementFailsWithoutAReportWhenAValueIsAsked)
{
    TestDeserializer node;
    Node child = &node;
    std::wstring text = L"kept";
    std::wstring_view view = L"kept";
    int integer = 5;
    double number = 5.0;
    bool flag = true;
    EXPECT_EQ(node.GetElement(L"Missing", child, text), KARFailure);
    EXPECT_EQ(child, nullptr);
    EXPECT_EQ(node.GetElement(L"Missing", child, view), KARFailure);
    EXPECT_EQ(node.GetElement(L"Missing", child, integer), KARFailure);
    EXPECT_EQ(node.GetElement(L"Missing", child, number), KARFailure);
    EXPECT_EQ(node.GetElement(L"Missing", child, flag), KARFailure);
    EXPECT_EQ(text, L"kept");
    EXPECT_EQ(view, L"kept");
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(number, 5.0);
    EXPECT_TRUE(flag);
}

TEST_F(Deserializer, AWalkBeginsAgainAfterTheLastChild)
{
    TestDeserializer node;
    AddGroup(node, L"Item", {L"first", L"second", L"third"});
    EXPECT_EQ(NextId(node, L"Item"), L"first");
    EXPECT_EQ(NextId(node, L"Item"), L"second");
    EXPECT_EQ(NextId(node, L"Item"), L"third");
    EXPECT_EQ(NextId(node, L"Item"), L"first");
}

TEST_F(Deserializer, TheCallThatEndsAWalkLeavesTheNextOneToBeginAtTheFirstChild)
{
    TestDeserializer node;
    AddGroup(node, L"Item", {L"first", L"second"});
    EXPECT_EQ(NextId(node, L"Item"), L"first");
    EXPECT_EQ(NextId(node, L"Item"), L"second");
    EXPECT_EQ(NextId(node, L"Item"), L"first");
    EXPECT_EQ(NextId(node, L"Item"), L"first");
    EXPECT_EQ(NextId(node, L"Item"), L"second");
}

TEST_F(Deserializer, ASingleChildIsGivenAtEachCall)
{
    TestDeserializer node;
    AddGroup(node, L"Item", {L"only"});
    EXPECT_EQ(NextId(node, L"Item"), L"only");
    EXPECT_EQ(NextId(node, L"Item"), L"only");
    EXPECT_EQ(NextId(node, L"Item"), L"only");
}

TEST_F(Deserializer, WalksOfDifferentNamesAreIndependent)
{
    TestDeserializer node;
    AddGroup(node, L"A", {L"a1", L"a2"});
    AddGroup(node, L"B", {L"b1", L"b2"});
    EXPECT_EQ(NextId(node, L"A"), L"a1");
    EXPECT_EQ(NextId(node, L"B"), L"b1");
    EXPECT_EQ(NextId(node, L"B"), L"b2");
    EXPECT_EQ(NextId(node, L"A"), L"a2");
}

TEST_F(Deserializer, AddingAnElementStartsAllWalksAgain)
{
    TestDeserializer node;
    AddGroup(node, L"A", {L"a1", L"a2"});
    AddGroup(node, L"B", {L"b1", L"b2"});
    NextId(node, L"A");
    NextId(node, L"B");
    AddGroup(node, L"A", {L"a3"});
    EXPECT_EQ(NextId(node, L"A"), L"a1");
    EXPECT_EQ(NextId(node, L"B"), L"b1");
    EXPECT_EQ(NextId(node, L"A"), L"a2");
    EXPECT_EQ(NextId(node, L"A"), L"a3");
}

TEST_F(Deserializer, AddingNoElementIsReportedAndStartsAllWalksAgain)
{
    TestDeserializer node;
    EXPECT_EQ(node.AddElement(L"A", nullptr), KARFailure);
    ExpectReports(1);
    AddGroup(node, L"A", {L"a1", L"a2"});
    NextId(node, L"A");
    EXPECT_EQ(node.AddElement(L"A", nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(NextId(node, L"A"), L"a1");
    KARMPDeserializer::ElementList elements;
    node.GetOrderedElementList(elements);
    EXPECT_EQ(elements.size(), 2U);
}

TEST_F(Deserializer, AskingForAnElementDoesNotMoveItsWalk)
{
    TestDeserializer node;
    AddGroup(node, L"A", {L"a1", L"a2"});
    EXPECT_TRUE(node.HasElement(L"A"));
    EXPECT_EQ(NextId(node, L"A"), L"a1");
    EXPECT_TRUE(node.HasElement(L"A"));
    EXPECT_EQ(NextId(node, L"A"), L"a2");
    EXPECT_FALSE(node.HasElement(L"a1"));
    EXPECT_FALSE(node.HasElement(L"B"));
}

TEST_F(Deserializer, ElementsAreGivenByNameInTheOrderOfTheNames)
{
    TestDeserializer node;
    AddGroup(node, L"b", {L"b1"});
    AddGroup(node, L"aa", {L"aa1"});
    AddGroup(node, L"b", {L"b2"});
    AddGroup(node, L"a", {L"a1"});
    AddGroup(node, L"B", {L"B1"});
    AddGroup(node, L"", {L"none"});
    const Names expected{L"", L"none", L"B1", L"a1", L"aa1", L"b1", L"b2"};
    std::list<Node> elements{&node};
    EXPECT_EQ(node.GetElements(elements), KARSuccess);
    ASSERT_EQ(elements.front(), &node);
    EXPECT_EQ(Ids(elements), expected);
    std::vector<Node> vector{&node};
    node.AppendElements(vector);
    ASSERT_EQ(vector.front(), &node);
    EXPECT_EQ(Ids(vector), expected);
}

TEST_F(Deserializer, ElementsAreGivenInTheOrderOfAddition)
{
    TestDeserializer node;
    AddGroup(node, L"b", {L"b1"});
    AddGroup(node, L"a", {L"a1"});
    AddGroup(node, L"b", {L"b2"});
    std::list<Node> elements{&node};
    EXPECT_EQ(node.GetOrderedElementList(elements), KARSuccess);
    EXPECT_EQ(Ids(elements), (Names{L"", L"b1", L"a1", L"b2"}));
    std::vector<Node> vector{&node};
    node.AppendOrderedElements(vector);
    EXPECT_EQ(Ids(vector), (Names{L"", L"b1", L"a1", L"b2"}));
}

TEST_F(Deserializer, TheElementsOfOneNameAreTheEndsOfAList)
{
    TestDeserializer node;
    AddGroup(node, L"b", {L"b1", L"b2", L"b3"});
    AddGroup(node, L"a", {L"a1"});
    std::list<Node>::const_iterator begin;
    std::list<Node>::const_iterator end;
    EXPECT_EQ(node.GetElements(L"b", begin, end), KARSuccess);
    EXPECT_EQ(Ids(std::list<Node>(begin, end)), (Names{L"b1", L"b2", L"b3"}));
    EXPECT_EQ(node.GetElements(L"a", begin, end), KARSuccess);
    EXPECT_EQ(Ids(std::list<Node>(begin, end)), (Names{L"a1"}));
    EXPECT_EQ(Ids(node.ElementsNamed(L"b")), (Names{L"b1", L"b2", L"b3"}));
    EXPECT_EQ(Ids(node.ElementsNamed(L"a")), (Names{L"a1"}));
}

TEST_F(Deserializer, TheListOfANameOfARecordHasItsOneElement)
{
    TestDeserializer node;
    AddGroup(node, L"a", {L"a1"});
    AddGroup(node, L"b", {L"b1"});
    EXPECT_EQ(NextId(node, L"a"), L"a1");
    ElementIterator begin;
    ElementIterator end;
    node.GetElements(L"b", begin, end);
    EXPECT_EQ(Ids(std::list<Node>(begin, end)), (Names{L"b1"}));
    EXPECT_EQ(NextId(node, L"a"), L"a1");
    EXPECT_EQ(NextId(node, L"b"), L"b1");
    EXPECT_FALSE(node.HasElement(L"c"));
}

TEST_F(Deserializer, TheListOfANameFollowsLaterAdditions)
{
    TestDeserializer node;
    AddGroup(node, L"a", {L"a1"});
    AddGroup(node, L"b", {L"b1"});
    ElementIterator begin;
    ElementIterator end;
    node.GetElements(L"a", begin, end);
    AddGroup(node, L"b", {L"b2"});
    AddGroup(node, L"a", {L"a2", L"a3"});
    AddGroup(node, L"c", {L"c1"});
    EXPECT_EQ(Ids(std::list<Node>(begin, end)), (Names{L"a1", L"a2", L"a3"}));
    ElementIterator again;
    node.GetElements(L"a", again, end);
    EXPECT_EQ(again, begin);
    node.GetElements(L"b", begin, end);
    EXPECT_EQ(Ids(std::list<Node>(begin, end)), (Names{L"b1", L"b2"}));
}

TEST_F(Deserializer, ListsDoNotMoveTheWalk)
{
    TestDeserializer node;
    AddGroup(node, L"a", {L"a1", L"a2"});
    EXPECT_EQ(NextId(node, L"a"), L"a1");
    ElementIterator begin;
    ElementIterator end;
    node.GetElements(L"a", begin, end);
    node.ElementsNamed(L"a");
    EXPECT_EQ(NextId(node, L"a"), L"a2");
}

TEST_F(Deserializer, IteratorsStayAsTheyWereWhenThereIsNoElementOfTheName)
{
    const std::list<Node> elsewhere{nullptr};
    ElementIterator begin = elsewhere.begin();
    ElementIterator end = elsewhere.end();
    TestDeserializer node;
    EXPECT_EQ(node.GetElements(L"a", begin, end), KARSuccess);
    EXPECT_TRUE(node.ElementsNamed(L"a").empty());
    AddGroup(node, L"b", {L"b1"});
    EXPECT_EQ(node.GetElements(L"a", begin, end), KARSuccess);
    EXPECT_EQ(begin, elsewhere.begin());
    EXPECT_EQ(end, elsewhere.end());
    EXPECT_TRUE(node.ElementsNamed(L"a").empty());
}

TEST_F(Deserializer, AnElementStandsUnderTheNameItIsAddedWith)
{
    TestDeserializer node;
    AddGroup(node, L"Listed", {L"Own"});
    EXPECT_TRUE(node.HasElement(L"Listed"));
    EXPECT_FALSE(node.HasElement(L"Own"));
    EXPECT_EQ(NextId(node, L"Listed"), L"Own");
}

TEST_F(Deserializer, OnlyTheWalkHandsTheVersionDown)
{
    TestDeserializer node;
    node.At(L"R2016.0");
    AddGroup(node, L"A", {L"a1", L"a2"});
    KARMPDeserializer::ElementList elements;
    node.GetElements(elements);
    node.GetOrderedElementList(elements);
    KARMPDeserializer::ElementVector vector;
    node.AppendElements(vector);
    node.AppendOrderedElements(vector);
    ElementIterator begin;
    ElementIterator end;
    node.GetElements(L"A", begin, end);
    EXPECT_EQ((*begin)->Version(), L"R2018.1");
    EXPECT_EQ(node.ElementsNamed(L"A")[0]->Version(), L"R2018.1");
    Node child = nullptr;
    node.GetElement(L"A", child);
    EXPECT_EQ(child->Version(), L"R2016.0");
    EXPECT_EQ((*begin)->Version(), L"R2016.0");
    EXPECT_EQ((*++begin)->Version(), L"R2018.1");
}

TEST_F(Deserializer, TheWalkReplacesAVersionOfTheChild)
{
    TestDeserializer node;
    node.Add(L"A").At(L"R2015x.0");
    Node child = nullptr;
    node.GetElement(L"A", child);
    EXPECT_EQ(child->Version(), L"R2018.1");
}

// A node notes which names it has when it is first asked for one that it does not have.
TEST_F(Deserializer, ANameThatWasMissedIsFoundOnceAChildHasIt)
{
    TestDeserializer node;
    const std::vector<std::wstring> names{L"Max", L"Min", L"", L"Value", L"Type"};
    for (const std::wstring& name : names) {
        EXPECT_FALSE(node.HasElement(name)) << kar::ToUtf8(name);
        EXPECT_FALSE(node.HasElement(L"Other"));
        ASSERT_EQ(node.AddElement(name, new TestDeserializer(name)), KARSuccess);
        EXPECT_TRUE(node.HasElement(name)) << kar::ToUtf8(name);
        EXPECT_EQ(NextId(node, name), name);
    }
    for (const std::wstring& name : names)
        EXPECT_EQ(NextId(node, name), name);
    EXPECT_EQ(NextId(node, L"Other"), L"none");
}

TEST_F(Deserializer, ManyNamesAreFoundWhateverTheirNumber)
{
    for (const int count : {15, 16, 17, 18, 100000}) {
        TestDeserializer node;
        for (int index = 0; index < count; ++index) {
            const std::wstring name = L"name" + std::to_wstring(index);
            node.AddAttributeValue(name, index);
            node.Leaf(name, index);
        }
        node.AddAttributeValue(L"name0", -1);
        node.Leaf(L"name0", -1);
        for (int index = count - 1; index >= 0; --index) {
            const std::wstring name = L"name" + std::to_wstring(index);
            int value = 0;
            ASSERT_EQ(node.GetAttribute(name, value), KARSuccess);
            ASSERT_EQ(value, index == 0 ? -1 : index);
            Node child = nullptr;
            ASSERT_EQ(node.GetElement(name, child, value), KARSuccess);
            ASSERT_EQ(value, index);
        }
        EXPECT_FALSE(node.HasAttribute(L"name"));
        EXPECT_FALSE(node.HasElement(L"name" + std::to_wstring(count)));
        KARMPDeserializer::ElementVector elements;
        node.AppendElements(elements);
        EXPECT_EQ(elements.size(), static_cast<std::size_t>(count) + 1);
        EXPECT_EQ(elements[0]->Id(), L"name0");
        EXPECT_EQ(elements[1]->Id(), L"name0");
    }
}

TEST_F(Deserializer, ManyElementsOfFewNamesAreWalkedInOrder)
{
    constexpr int Count = 100000;
    TestDeserializer node;
    for (int index = 0; index < Count; ++index)
        node.Leaf(index % 2 == 0 ? L"Even" : L"Odd", index);
    for (int index = 0; index < Count; ++index) {
        Node child = nullptr;
        int value = 0;
        ASSERT_EQ(node.GetElement(index % 2 == 0 ? L"Even" : L"Odd", child, value), KARSuccess);
        ASSERT_EQ(value, index);
    }
}
