#include "EquationTesting.h"

#include <clocale>

namespace {

TEST(EquationParser, NumbersReadInAllTheirForms)
{
    EXPECT_EQ(Evaluate("0"), 0.0);
    EXPECT_EQ(Evaluate("007"), 7.0);
    EXPECT_EQ(Evaluate("1.5"), 1.5);
    EXPECT_EQ(Evaluate(".25"), 0.25);
    EXPECT_EQ(Evaluate("2."), 2.0);
    EXPECT_EQ(Evaluate("1e3"), 1000.0);
    EXPECT_EQ(Evaluate("1.5E-2"), 0.015);
    EXPECT_EQ(Evaluate("2.e+2"), 200.0);
    EXPECT_EQ(Evaluate("4.9e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(EquationParser, NumbersDoNotDependOnTheLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ(Evaluate("1.5 + 0.25"), 1.75);
    EXPECT_EQ(Reprint("1.5"), "1.5");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(EquationParser, MalformedNumbersAreErrors)
{
    EXPECT_EQ(FirstError("1..2"), "1:1: malformed number \"1..2\"");
    EXPECT_EQ(FirstError("a + 3b"), "1:5: malformed number \"3b\"");
    EXPECT_EQ(FirstError("2e"), "1:1: malformed number \"2e\"");
    EXPECT_EQ(FirstError("2e+"), "1:1: malformed number \"2e\"");
    EXPECT_EQ(FirstError("1e999"), "1:1: number out of range \"1e999\"");
    EXPECT_EQ(FirstError("1e-999"), "1:1: number out of range \"1e-999\"");
    EXPECT_EQ(FirstError("."), "1:1: unexpected character \".\"");
}

TEST(EquationParser, ProductsBindTighterThanSums)
{
    EXPECT_EQ(Evaluate("a + b * c"), 17.0);
    EXPECT_EQ(Evaluate("a * b + c"), 11.0);
    EXPECT_EQ(Evaluate("(a + b) * c"), 25.0);
    EXPECT_EQ(Evaluate("a - b / c"), 2.0 - 0.6);
}

TEST(EquationParser, SumsAndProductsGroupFromTheLeft)
{
    EXPECT_EQ(Evaluate("a - b - c"), -6.0);
    EXPECT_EQ(Evaluate("a - (b - c)"), 4.0);
    EXPECT_EQ(Evaluate("12 / a / b"), 2.0);
    EXPECT_EQ(Evaluate("12 / a * b"), 18.0);
    EXPECT_EQ(Evaluate("12 / (a * b)"), 2.0);
}

TEST(EquationParser, PowersGroupFromTheRight)
{
    EXPECT_EQ(Evaluate("2 ^ 3 ^ 2"), 512.0);
    EXPECT_EQ(Evaluate("(2 ^ 3) ^ 2"), 64.0);
    EXPECT_EQ(Evaluate("2 * 3 ^ 2"), 18.0);
}

TEST(EquationParser, SignsBindWeakerThanPowersAndTighterThanProducts)
{
    EXPECT_EQ(Evaluate("-2 ^ 2"), -4.0);
    EXPECT_EQ(Evaluate("(-2) ^ 2"), 4.0);
    EXPECT_EQ(Evaluate("2 ^ -1"), 0.5);
    EXPECT_EQ(Evaluate("2 ^ -1 ^ 2"), 0.5);
    EXPECT_EQ(Evaluate("2 ^ -1 * 4"), 2.0);
    EXPECT_EQ(Evaluate("-a * b"), -6.0);
    EXPECT_EQ(Evaluate("a * -b"), -6.0);
    EXPECT_EQ(Evaluate("a - -b"), 5.0);
    EXPECT_EQ(Evaluate("--a"), 2.0);
    EXPECT_EQ(Evaluate("-+-+a"), 2.0);
}

TEST(EquationParser, UnaryPlusLeavesNoNode)
{
    EXPECT_TRUE(Parsed("+a + +1").First()->IsSameAs(*Parsed("a + 1").First()));
}

TEST(EquationParser, ComparisonsBindWeakerThanSums)
{
    EXPECT_EQ(Evaluate("a + 1 < b + 1"), 1.0);
    EXPECT_EQ(Evaluate("a + 1 >= c"), 0.0);
    EXPECT_EQ(Evaluate("(a < b) + 1"), 2.0);
}

TEST(EquationParser, ComparisonsDoNotChain)
{
    EXPECT_EQ(FirstError("a < b < c"), "1:7: comparisons don't chain; use parentheses");
    EXPECT_EQ(FirstError("a == b != c"), "1:8: comparisons don't chain; use parentheses");
    EXPECT_EQ(Evaluate("(a < b) < c"), 1.0);
    EXPECT_EQ(Evaluate("a < (b < c)"), 0.0);
}

TEST(EquationParser, EqualsSignStandsOnceAndOutermost)
{
    const std::string error = "'=' may stand once and outside of parentheses only; '==' compares";
    EXPECT_EQ(Evaluate("a + b = c - 1"), 1.0);
    EXPECT_EQ(Evaluate("a < b = 1"), 0.0);
    EXPECT_EQ(FirstError("a = b = c"), "1:7: " + error);
    EXPECT_EQ(FirstError("(a = b)"), "1:4: " + error);
    EXPECT_EQ(FirstError("sin(a = b)"), "1:7: " + error);
}

TEST(EquationParser, SemicolonsSeparateEquationsAndMayEndTheText)
{
    const Parsed parsed("a; b + 1;\n c = 2 ;");
    ASSERT_EQ(parsed.status, KARSuccess);
    EXPECT_EQ(parsed.ids.Size(), 3);
    EXPECT_EQ(parsed.factory.GetNbOfEquations(), 3);
    EXPECT_EQ(Print(parsed.factory.GetEquationById(2)), "c = 2");
    EXPECT_EQ(FirstError("a;;b"), "1:3: expected a number, a name or '(', found \";\"");
    EXPECT_EQ(FirstError(";"), "1:1: expected a number, a name or '(', found \";\"");
}

TEST(EquationParser, TextWithoutEquationIsAnError)
{
    EXPECT_EQ(FirstError(""), "1:1: expected a number, a name or '(', found the end");
    EXPECT_EQ(FirstError(" \n "), "2:2: expected a number, a name or '(', found the end");
}

TEST(EquationParser, ParseFillsModelAndIdsOfTheModel)
{
    KARWBModel model;
    KARCDSIntArray ids;
    ids.Append(99);
    KARWBParserMessenger messenger;
    ASSERT_EQ(KARWBParser::Parse("x + y; y - x", model, ids, messenger, nullptr), KARSuccess);
    ASSERT_EQ(ids.Size(), 2);
    EXPECT_EQ(ids[0], 0);
    EXPECT_EQ(ids[1], 1);
    EXPECT_EQ(messenger.GetNbOfErrors(), 0);
    ASSERT_EQ(model.GetNbOfEquations(), 2);
    const KARWBModelEquation& second = model.GetEquation(1);
    ASSERT_EQ(second.variableNames.size(), 2U);
    EXPECT_EQ(second.variableNames[0], "y");
    EXPECT_EQ(second.variableNames[1], "x");
}

TEST(EquationParser, FailureEmptiesModelAndIds)
{
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    ASSERT_EQ(KARWBParser::Parse("x; y", model, ids, messenger, nullptr), KARSuccess);
    EXPECT_EQ(KARWBParser::Parse("x; y +", model, ids, messenger, nullptr), KARFailure);
    EXPECT_EQ(model.GetNbOfEquations(), 0);
    EXPECT_EQ(ids.Size(), 0);
}

TEST(EquationParser, NullTextAndBlackBoxesAreRefused)
{
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    const char* none = nullptr;
    EXPECT_EQ(KARWBParser::Parse(none, model, ids, messenger, nullptr), KARFailure);
    int somewhere = 0;
    const auto* boxes = reinterpret_cast<const KARWBBlackBoxList*>(&somewhere);
    EXPECT_EQ(KARWBParser::Parse("x", model, ids, messenger, boxes), KARFailure);
    EXPECT_EQ(messenger.GetNbOfErrors(), 2);
}

TEST(EquationParser, QuotedNamesHoldAnyBytes)
{
    const Parsed parsed(R"('id6f-a 1' + 'it\'s' + 'a\\b' + '\x00\xfF' + '' + 'sin')");
    ASSERT_EQ(parsed.status, KARSuccess) << parsed.messenger.GetText();
    const KARWBEquation* equation = parsed.First();
    ASSERT_EQ(equation->GetNbOfVariables(), 6);
    EXPECT_EQ(equation->GetVariable(0)->GetName(), "id6f-a 1");
    EXPECT_EQ(equation->GetVariable(1)->GetName(), "it's");
    EXPECT_EQ(equation->GetVariable(2)->GetName(), "a\\b");
    EXPECT_EQ(equation->GetVariable(3)->GetName(), KARCDSString(std::string("\0\xff", 2)));
    EXPECT_EQ(equation->GetVariable(4)->GetName(), "");
    EXPECT_EQ(equation->GetVariable(5)->GetName(), "sin");
}

TEST(EquationParser, QuotedAndPlainFormOfANameAreOneVariable)
{
    EXPECT_EQ(Parsed("'abc' + abc").First()->GetNbOfVariables(), 1);
}

TEST(EquationParser, WrongQuotesAndEscapesAreErrorsAtTheirPlace)
{
    EXPECT_EQ(FirstError("1 + 'abc"), "1:5: a quoted name without its closing quote");
    const std::string escape = "unknown escape in a quoted name; known are \\', \\\\ and \\x with "
                               "two digits";
    EXPECT_EQ(FirstError(R"(1 + 'a\n')"), "1:7: " + escape);
    EXPECT_EQ(FirstError(R"('\x1')"), "1:2: " + escape);
    EXPECT_EQ(FirstError("'\\"), "1:2: " + escape);
}

TEST(EquationParser, TextBehindAWrongEscapeStaysPartOfTheName)
{
    EXPECT_EQ(Parsed(R"('a\q; ^' + 1; 2 * ; 3)").messenger.GetNbOfErrors(), 2);
}

TEST(EquationParser, FunctionsNeedTheirArguments)
{
    EXPECT_EQ(FirstError("1 + atan2(a)"), "1:5: atan2 takes 2 arguments, not 1");
    EXPECT_EQ(FirstError("sin()"), "1:1: sin takes 1 argument, not 0");
    EXPECT_EQ(FirstError("sin(a, b)"), "1:1: sin takes 1 argument, not 2");
    EXPECT_EQ(FirstError("min()"), "1:1: min takes 1 or more arguments, not 0");
    EXPECT_EQ(FirstError("sin + 1"), "1:5: expected '(' after the function sin, found \"+\"");
    EXPECT_EQ(FirstError("max(a,"), "1:7: expected a number, a name or '(', found the end");
    EXPECT_EQ(FirstError("max(a b)"), "1:7: expected an operator, ',' or ')', found \"b\"");
}

TEST(EquationParser, UnknownFunctionsAreErrorsAtTheirName)
{
    EXPECT_EQ(FirstError("1 + foo(a)"), "1:5: unknown function \"foo\"");
    EXPECT_EQ(FirstError("pi(a)"), "1:1: unknown function \"pi\"");
    EXPECT_EQ(FirstError("'sin'(a)"), "1:6: expected an operator or ';', found \"(\"");
}

TEST(EquationParser, ErrorsNameLineAndColumn)
{
    EXPECT_EQ(FirstError("a +\n  * b"), "2:3: expected a number, a name or '(', found \"*\"");
    EXPECT_EQ(FirstError("a\r\n+ b )"), "2:5: expected an operator or ';', found \")\"");
    EXPECT_EQ(FirstError("(a + b"), "1:7: expected an operator or ')', found the end");
    EXPECT_EQ(FirstError("a 2"), "1:3: expected an operator or ';', found a number");
    EXPECT_EQ(FirstError("a ! b"), "1:3: unexpected character \"!\"");
}

TEST(EquationParser, ColumnsCountCharactersNotBytes)
{
    EXPECT_EQ(FirstError("'\xC3\xA4\xE2\x82\xAC' )"),
              "1:6: expected an operator or ';', found \")\"");
}

TEST(EquationParser, EveryWrongEquationOfATextShows)
{
    const Parsed parsed("a +; b;\n c * *; (d");
    ASSERT_EQ(parsed.messenger.GetNbOfErrors(), 3);
    EXPECT_EQ(parsed.messenger.GetError(0).column, 4);
    EXPECT_EQ(parsed.messenger.GetError(1).line, 2);
    EXPECT_EQ(parsed.messenger.GetError(1).column, 6);
    EXPECT_EQ(parsed.messenger.GetError(2).column, 11);
    EXPECT_THROW(parsed.messenger.GetError(3), std::out_of_range);
}

TEST(EquationParser, ErrorsOfOneTextAreLimitedInNumber)
{
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "+;";
    EXPECT_EQ(Parsed(text).messenger.GetNbOfErrors(), KARWBParserMessenger::MaxErrorsPerText);
}

} // namespace
