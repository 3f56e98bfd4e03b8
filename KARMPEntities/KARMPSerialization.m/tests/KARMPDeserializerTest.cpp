#include "KARMPDeserializer.h"

#include "AllocationCounter.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

class Deserializer : public KARMPTestFixture
{
protected:
    using Node = const KARMPDeserializer*;

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

    static std::vector<std::wstring> Ids(const KARMPDeserializer::ElementList& elements)
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
    KARMPDeserializer::ElementList elements{&node};
    EXPECT_EQ(node.GetElements(elements), KARSuccess);
    ASSERT_EQ(elements.front(), &node);
    EXPECT_EQ(Ids(elements), (Names{L"", L"none", L"B1", L"a1", L"aa1", L"b1", L"b2"}));
}

TEST_F(Deserializer, ElementsAreGivenInTheOrderOfAddition)
{
    TestDeserializer node;
    AddGroup(node, L"b", {L"b1"});
    AddGroup(node, L"a", {L"a1"});
    AddGroup(node, L"b", {L"b2"});
    KARMPDeserializer::ElementList elements{&node};
    EXPECT_EQ(node.GetOrderedElementList(elements), KARSuccess);
    EXPECT_EQ(Ids(elements), (Names{L"", L"b1", L"a1", L"b2"}));
}

TEST_F(Deserializer, TheElementsOfOneNameAreARange)
{
    TestDeserializer node;
    AddGroup(node, L"b", {L"b1", L"b2", L"b3"});
    AddGroup(node, L"a", {L"a1"});
    KARMPDeserializer::ElementIterator begin = nullptr;
    KARMPDeserializer::ElementIterator end = nullptr;
    EXPECT_EQ(node.GetElements(L"b", begin, end), KARSuccess);
    EXPECT_EQ(Ids({begin, end}), (Names{L"b1", L"b2", L"b3"}));
    EXPECT_EQ(node.GetElements(L"a", begin, end), KARSuccess);
    EXPECT_EQ(Ids({begin, end}), (Names{L"a1"}));
}

TEST_F(Deserializer, IteratorsStayAsTheyWereWhenThereIsNoElementOfTheName)
{
    TestDeserializer node;
    AddGroup(node, L"b", {L"b1"});
    const KARMPDeserializer* elsewhere = nullptr;
    KARMPDeserializer::ElementIterator begin = &elsewhere;
    KARMPDeserializer::ElementIterator end = &elsewhere + 1;
    EXPECT_EQ(node.GetElements(L"a", begin, end), KARSuccess);
    EXPECT_EQ(begin, &elsewhere);
    EXPECT_EQ(end, &elsewhere + 1);
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
    KARMPDeserializer::ElementIterator begin = nullptr;
    KARMPDeserializer::ElementIterator end = nullptr;
    node.GetElements(L"A", begin, end);
    EXPECT_EQ((*begin)->Version(), L"R2018.1");
    Node child = nullptr;
    node.GetElement(L"A", child);
    EXPECT_EQ(child->Version(), L"R2016.0");
    EXPECT_EQ(begin[0]->Version(), L"R2016.0");
    EXPECT_EQ(begin[1]->Version(), L"R2018.1");
}

TEST_F(Deserializer, TheWalkReplacesAVersionOfTheChild)
{
    TestDeserializer node;
    node.Add(L"A").At(L"R2015x.0");
    Node child = nullptr;
    node.GetElement(L"A", child);
    EXPECT_EQ(child->Version(), L"R2018.1");
}

TEST_F(Deserializer, TypedValuesComeBackAsTheyWereFilled)
{
    TestDeserializer node;
    node.Attribute(L"text", L"text").Attribute(L"int", -3).Attribute(L"double", 0.1);
    node.Attribute(L"bool", true).Attribute(L"moved", std::wstring(1000, L'm'));
    std::wstring text;
    std::wstring_view view;
    int integer = 0;
    double number = 0.0;
    bool flag = false;
    EXPECT_EQ(node.GetAttribute(L"text", text), KARSuccess);
    EXPECT_EQ(node.GetAttribute(L"moved", view), KARSuccess);
    EXPECT_EQ(node.GetAttribute(L"int", integer), KARSuccess);
    EXPECT_EQ(node.GetAttribute(L"double", number), KARSuccess);
    EXPECT_EQ(node.GetAttribute(L"bool", flag), KARSuccess);
    EXPECT_EQ(text, L"text");
    EXPECT_EQ(view, std::wstring(1000, L'm'));
    EXPECT_EQ(integer, -3);
    EXPECT_EQ(number, 0.1);
    EXPECT_TRUE(flag);
}

TEST_F(Deserializer, TheValueOfAnElementIsConvertedLikeAnAttribute)
{
    TestDeserializer node;
    node.Leaf(L"text", L"text").Leaf(L"int", L"12").Leaf(L"double", L"0,25").Leaf(L"bool", L"no");
    node.Leaf(L"moved", std::wstring(1000, L'm'));
    Node child = nullptr;
    std::wstring text;
    std::wstring_view view;
    int integer = 0;
    double number = 0.0;
    bool flag = true;
    EXPECT_EQ(node.GetElement(L"text", child, text), KARSuccess);
    EXPECT_EQ(child->Id(), L"text");
    EXPECT_EQ(node.GetElement(L"moved", child, view), KARSuccess);
    EXPECT_EQ(node.GetElement(L"int", child, integer), KARSuccess);
    EXPECT_EQ(node.GetElement(L"double", child, number), KARSuccess);
    EXPECT_EQ(node.GetElement(L"bool", child, flag), KARSuccess);
    EXPECT_EQ(text, L"text");
    EXPECT_EQ(view.size(), 1000U);
    EXPECT_EQ(integer, 12);
    EXPECT_EQ(number, 0.25);
    EXPECT_FALSE(flag);
}

TEST_F(Deserializer, AMissingAttributeFailsWithoutAReport)
{
    TestDeserializer node;
    node.Attribute(L"other", 1);
    std::wstring text = L"kept";
    int integer = 5;
    double number = 5.0;
    bool flag = true;
    EXPECT_EQ(node.GetAttribute(L"missing", text), KARFailure);
    EXPECT_EQ(node.GetAttribute(L"missing", integer), KARFailure);
    EXPECT_EQ(node.GetAttribute(L"missing", number), KARFailure);
    EXPECT_EQ(node.GetAttribute(L"missing", flag), KARFailure);
    EXPECT_EQ(text, L"kept");
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(number, 5.0);
    EXPECT_TRUE(flag);
}

TEST_F(Deserializer, ACommaCountsAsADecimalPoint)
{
    TestDeserializer node;
    double number = 0.0;
    node.Attribute(L"a", L"1,5");
    EXPECT_EQ(node.GetAttribute(L"a", number), KARSuccess);
    EXPECT_EQ(number, 1.5);
    node.Attribute(L"a", L"-2,5e-1");
    EXPECT_EQ(node.GetAttribute(L"a", number), KARSuccess);
    EXPECT_EQ(number, -0.25);
}

TEST_F(Deserializer, ANumberIsReadFromTheBeginningOfAText)
{
    TestDeserializer node;
    int integer = 0;
    node.Attribute(L"a", L"1.5");
    EXPECT_EQ(node.GetAttribute(L"a", integer), KARSuccess);
    EXPECT_EQ(integer, 1);
    node.Attribute(L"a", L" 42 mm");
    EXPECT_EQ(node.GetAttribute(L"a", integer), KARSuccess);
    EXPECT_EQ(integer, 42);
    double number = 0.0;
    node.Attribute(L"a", L" 4.25 mm");
    EXPECT_EQ(node.GetAttribute(L"a", number), KARSuccess);
    EXPECT_EQ(number, 4.25);
}

TEST_F(Deserializer, ATextThatIsNoNumberFailsWithAReportAndKeepsTheArgument)
{
    TestDeserializer node;
    int integer = 5;
    double number = 5.0;
    for (const wchar_t* const text : {L"", L" ", L"x", L"-", L"x1"}) {
        node.Attribute(L"a", text);
        EXPECT_EQ(node.GetAttribute(L"a", integer), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(node.GetAttribute(L"a", number), KARFailure);
        ExpectReports(1);
    }
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(number, 5.0);
}

TEST_F(Deserializer, OnlyTheExactFormsAreBools)
{
    TestDeserializer node;
    bool flag = false;
    for (const wchar_t* const text : {L"1", L"true", L"TRUE", L"yes", L"YES"}) {
        flag = false;
        node.Attribute(L"a", text);
        EXPECT_EQ(node.GetAttribute(L"a", flag), KARSuccess);
        EXPECT_TRUE(flag);
    }
    for (const wchar_t* const text : {L"0", L"false", L"FALSE", L"no", L"NO"}) {
        flag = true;
        node.Attribute(L"a", text);
        EXPECT_EQ(node.GetAttribute(L"a", flag), KARSuccess);
        EXPECT_FALSE(flag);
    }
}

TEST_F(Deserializer, AnyOtherTextAsBoolFailsWithoutAReportAndKeepsTheArgument)
{
    TestDeserializer node;
    for (const wchar_t* const text : {L"True", L"Yes", L"False", L"No", L"", L" 1", L"10", L"on"}) {
        node.Attribute(L"a", text);
        bool flag = true;
        EXPECT_EQ(node.GetAttribute(L"a", flag), KARFailure);
        EXPECT_TRUE(flag);
        flag = false;
        EXPECT_EQ(node.GetAttribute(L"a", flag), KARFailure);
        EXPECT_FALSE(flag);
    }
}

TEST_F(Deserializer, NumericKindsDoNotConvertToOneAnother)
{
    TestDeserializer node;
    node.Attribute(L"int", 1).Attribute(L"double", 1.0).Attribute(L"bool", true);
    std::wstring text = L"kept";
    int integer = 5;
    double number = 5.0;
    bool flag = false;
    for (const wchar_t* const name : {L"double", L"bool"}) {
        EXPECT_EQ(node.GetAttribute(name, integer), KARFailure);
        ExpectReports(1);
    }
    for (const wchar_t* const name : {L"int", L"bool"}) {
        EXPECT_EQ(node.GetAttribute(name, number), KARFailure);
        ExpectReports(1);
    }
    for (const wchar_t* const name : {L"int", L"double"}) {
        EXPECT_EQ(node.GetAttribute(name, flag), KARFailure);
        ExpectReports(1);
    }
    for (const wchar_t* const name : {L"int", L"double", L"bool"}) {
        EXPECT_EQ(node.GetAttribute(name, text), KARFailure);
        ExpectReports(1);
    }
    EXPECT_EQ(text, L"kept");
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(number, 5.0);
    EXPECT_FALSE(flag);
}

TEST_F(Deserializer, ANodeWithoutAValueHasNoneOfAnyKind)
{
    TestDeserializer node;
    std::wstring text;
    int integer = 0;
    double number = 0.0;
    bool flag = false;
    EXPECT_EQ(node.GetValue(text), KARFailure);
    EXPECT_EQ(node.GetValue(integer), KARFailure);
    EXPECT_EQ(node.GetValue(number), KARFailure);
    EXPECT_EQ(node.GetValue(flag), KARFailure);
    ExpectReports(4);
}

TEST_F(Deserializer, AChildWhoseValueDoesNotConvertIsHandedOutWithTheFailure)
{
    TestDeserializer node;
    node.Leaf(L"number", L"x").Leaf(L"flag", L"Maybe").Leaf(L"int", 1);
    Node child = nullptr;
    double number = 5.0;
    EXPECT_EQ(node.GetElement(L"number", child, number), KARFailure);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->Id(), L"number");
    ExpectReports(2);
    bool flag = true;
    EXPECT_EQ(node.GetElement(L"flag", child, flag), KARFailure);
    EXPECT_NE(child, nullptr);
    ExpectReports(1);
    std::wstring text;
    EXPECT_EQ(node.GetElement(L"int", child, text), KARFailure);
    EXPECT_NE(child, nullptr);
    ExpectReports(2);
}

TEST_F(Deserializer, ASecondAttributeOfOneNameReplacesTheFirst)
{
    TestDeserializer node;
    node.Attribute(L"a", L"first").Attribute(L"b", 1).Attribute(L"a", 2);
    int integer = 0;
    EXPECT_EQ(node.GetAttribute(L"a", integer), KARSuccess);
    EXPECT_EQ(integer, 2);
    std::wstring text;
    EXPECT_EQ(node.GetAttribute(L"a", text), KARFailure);
    ExpectReports(1);
}

TEST_F(Deserializer, ASecondValueReplacesTheFirst)
{
    TestDeserializer node;
    node.Holding(L"text").Holding(2.5);
    double number = 0.0;
    EXPECT_EQ(node.GetValue(number), KARSuccess);
    EXPECT_EQ(number, 2.5);
}

TEST_F(Deserializer, DoublesAreNotRounded)
{
    TestDeserializer node;
    node.Attribute(L"a", 1e-13).Attribute(L"b", L"1e-13").Attribute(L"c", L"nan");
    double number = 0.0;
    node.GetAttribute(L"a", number);
    EXPECT_EQ(number, 1e-13);
    node.GetAttribute(L"b", number);
    EXPECT_EQ(number, 1e-13);
    EXPECT_EQ(node.GetAttribute(L"c", number), KARSuccess);
    EXPECT_TRUE(std::isnan(number));
}

TEST_F(Deserializer, EveryNumberIsTheDoubleNearestToItsText)
{
    TestDeserializer node;
    const auto read = [&node](const std::wstring& text) {
        double number = 7.0;
        node.SetValue(std::wstring_view(text));
        EXPECT_EQ(node.GetValue(number), KARSuccess) << std::string(text.begin(), text.end());
        return number;
    };
    for (const wchar_t* text :
         {L"0", L"-0", L"1", L"-1.5", L".5", L"5.", L"-.25", L"0.1", L"0,3", L"123456789012345",
          L"1234567890123456", L"9007199254740993", L"0.000000000000001", L"0.0000000000000001",
          L"0.30000000000000004", L"99999.9999999999", L"1.7976931348623157e308", L"1e22"}) {
        std::string narrow;
        for (const wchar_t* character = text; *character != 0; ++character)
            narrow.push_back(*character == L',' ? '.' : static_cast<char>(*character));
        const double expected = std::strtod(narrow.c_str(), nullptr);
        EXPECT_EQ(read(text), expected) << narrow;
        EXPECT_EQ(std::signbit(read(text)), std::signbit(expected)) << narrow;
    }
    for (int number = 0; number < 20000; ++number) {
        const std::string text = std::to_string(number * 0.000137);
        EXPECT_EQ(read(std::wstring(text.begin(), text.end())), std::strtod(text.c_str(), nullptr));
    }
    for (const wchar_t* text : {L"", L".", L"-", L"-.", L","}) {
        double number = 7.0;
        node.SetValue(std::wstring_view(text));
        EXPECT_EQ(node.GetValue(number), KARFailure);
        EXPECT_EQ(number, 7.0);
    }
    ExpectReports(5);
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
        KARMPDeserializer::ElementList elements;
        node.GetElements(elements);
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

TEST_F(Deserializer, LookingSomethingUpTakesNoMemory)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    TestDeserializer node;
    node.Attribute(L"a long name of an attribute", L"0,5");
    for (int index = 0; index < 100; ++index)
        node.Leaf(L"a long name of an element, number " + std::to_wstring(index), 1.0);
    AllocationCounter allocations;
    double number = 0.0;
    Node child = nullptr;
    EXPECT_EQ(node.GetAttribute(L"a long name of an attribute", number), KARSuccess);
    EXPECT_EQ(node.GetElement(L"a long name of an element, number 77", child, number), KARSuccess);
    EXPECT_FALSE(node.HasElement(L"a long name of no element"));
    EXPECT_EQ(allocations.Count(), 0U);
}

TEST_F(Deserializer, ANodeTakesLittleRoom)
{
    EXPECT_LE(sizeof(KARMPDeserializer), 64U);
}

TEST_F(Deserializer, EveryNodeOfATreeIsFreedOnce)
{
    const std::size_t before = TestDeserializer::Alive();
    {
        TestDeserializer node;
        for (int index = 0; index < 10; ++index) {
            TestDeserializer& child = node.Add(index % 2 == 0 ? L"Even" : L"Odd");
            child.Leaf(L"x", 1).Leaf(L"y", 2).Leaf(L"x", 3);
        }
        EXPECT_EQ(TestDeserializer::Alive(), before + 41);
    }
    EXPECT_EQ(TestDeserializer::Alive(), before);
}

TEST_F(Deserializer, ADeepTreeDoesNotExhaustTheStack)
{
    const std::size_t before = TestDeserializer::Alive();
    {
        TestDeserializer root;
        TestDeserializer* deepest = &root;
        for (int depth = 0; depth < 1000000; ++depth)
            deepest = &deepest->Add(L"Level");
        EXPECT_EQ(TestDeserializer::Alive(), before + 1000001);
    }
    EXPECT_EQ(TestDeserializer::Alive(), before);
}

TEST_F(Deserializer, AnAdditionForWhichMemoryEndsChangesNothing)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    constexpr int Filled = 16;
    for (std::size_t failing = 1;; ++failing) {
        TestDeserializer node;
        for (int index = 0; index < Filled; ++index) {
            node.Leaf(L"name" + std::to_wstring(index), index);
            node.Attribute(L"name" + std::to_wstring(index), index);
        }
        auto child = std::make_unique<TestDeserializer>();
        const std::wstring name(100, L'n');
        bool failed = false;
        {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            try {
                node.AddAttributeValue(name, 1);
                node.AddElement(name, child.get());
                (void)child.release();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        EXPECT_EQ(node.HasElement(name), !failed);
        KARMPDeserializer::ElementList elements;
        node.GetOrderedElementList(elements);
        EXPECT_EQ(elements.size(), Filled + (failed ? 0U : 1U));
        for (int index = 0; index < Filled; ++index) {
            EXPECT_TRUE(node.HasElement(L"name" + std::to_wstring(index)));
            EXPECT_TRUE(node.HasAttribute(L"name" + std::to_wstring(index)));
        }
        if (!failed) {
            EXPECT_GT(failing, 4U);
            break;
        }
    }
}

namespace {

// A node that notes its name when it dies.
class NotingReader : public TestDeserializer
{
public:
    NotingReader(std::wstring_view name, std::vector<std::wstring>& dead)
        : TestDeserializer(name), m_dead(dead)
    {}
    ~NotingReader() override { m_dead.emplace_back(Id()); }

private:
    std::vector<std::wstring>& m_dead;
};

} // namespace

TEST_F(Deserializer, ChildrenDieByNameAndASubtreeBeforeTheNextChild)
{
    Names dead;
    {
        NotingReader root(L"root", dead);
        const auto add = [&dead](TestDeserializer& node, std::wstring_view name,
                                 const wchar_t* id) -> TestDeserializer& {
            auto* const child = new NotingReader(id, dead);
            node.AddElement(name, child);
            return *child;
        };
        TestDeserializer& second = add(root, L"b", L"b1");
        TestDeserializer& first = add(root, L"a", L"a1");
        add(root, L"b", L"b2");
        add(second, L"y", L"b1y");
        add(second, L"x", L"b1x");
        add(first, L"x", L"a1x");
    }
    EXPECT_EQ(dead, (Names{L"root", L"a1", L"a1x", L"b1", L"b1x", L"b1y", L"b2"}));
}
