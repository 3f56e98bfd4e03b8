// The reader's conversions of attributes and values.
#include "KARMPDeserializer.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

class DeserializerValues : public KARMPTestFixture
{
protected:
    using Node = const KARMPDeserializer*;
};

TEST_F(DeserializerValues, TypedValuesComeBackAsTheyWereFilled)
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

TEST_F(DeserializerValues, TheValueOfAnElementIsConvertedLikeAnAttribute)
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

TEST_F(DeserializerValues, AMissingAttributeFailsWithoutAReport)
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

TEST_F(DeserializerValues, ACommaCountsAsADecimalPoint)
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

TEST_F(DeserializerValues, ANumberIsReadFromTheBeginningOfAText)
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

TEST_F(DeserializerValues, ATextThatIsNoNumberFailsWithAReportAndKeepsTheArgument)
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

TEST_F(DeserializerValues, OnlyTheExactFormsAreBools)
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

TEST_F(DeserializerValues, AnyOtherTextAsBoolFailsWithoutAReportAndKeepsTheArgument)
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

TEST_F(DeserializerValues, NumericKindsDoNotConvertToOneAnother)
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

TEST_F(DeserializerValues, ANodeWithoutAValueHasNoneOfAnyKind)
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
    EXPECT_FALSE(node.HasValue());
    EXPECT_TRUE(node.Holding(L"").HasValue());
    EXPECT_TRUE(node.Holding(0).HasValue());
}

TEST_F(DeserializerValues, AChildWhoseValueDoesNotConvertIsHandedOutWithTheFailure)
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

TEST_F(DeserializerValues, ASecondAttributeOfOneNameReplacesTheFirst)
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

TEST_F(DeserializerValues, ASecondValueReplacesTheFirst)
{
    TestDeserializer node;
    node.Holding(L"text").Holding(2.5);
    double number = 0.0;
    EXPECT_EQ(node.GetValue(number), KARSuccess);
    EXPECT_EQ(number, 2.5);
}

TEST_F(DeserializerValues, DoublesAreNotRounded)
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

TEST_F(DeserializerValues, EveryNumberIsTheDoubleNearestToItsText)
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
