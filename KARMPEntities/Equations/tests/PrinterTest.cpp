#include "EquationTesting.h"

#include <bit>
#include <cctype>
#include <cmath>

namespace {

TEST(EquationPrinter, LeavesOutParenthesesThatSayNothing)
{
    EXPECT_EQ(Reprint("((a + b) + (c))"), "a + b + c");
    EXPECT_EQ(Reprint("a+(b*c)"), "a + b * c");
    EXPECT_EQ(Reprint("(a*b)/c"), "a * b / c");
    EXPECT_EQ(Reprint("a^(b^c)"), "a^b^c");
    EXPECT_EQ(Reprint("-(a^b)"), "-a^b");
    EXPECT_EQ(Reprint("a^(-b)"), "a^-b");
    EXPECT_EQ(Reprint("(-a)*b"), "-a * b");
    EXPECT_EQ(Reprint("a-(-b)"), "a - -b");
    EXPECT_EQ(Reprint("(a+b)<(c)"), "a + b < c");
    EXPECT_EQ(Reprint("(a<b)=(c)"), "a < b = c");
    EXPECT_EQ(Reprint("sin((a))"), "sin(a)");
}

TEST(EquationPrinter, KeepsParenthesesThatGroup)
{
    EXPECT_EQ(Reprint("a-(b-c)"), "a - (b - c)");
    EXPECT_EQ(Reprint("a+(b+c)"), "a + (b + c)");
    EXPECT_EQ(Reprint("a*(b/c)"), "a * (b / c)");
    EXPECT_EQ(Reprint("(a+b)*c"), "(a + b) * c");
    EXPECT_EQ(Reprint("(a^b)^c"), "(a^b)^c");
    EXPECT_EQ(Reprint("(-a)^b"), "(-a)^b");
    EXPECT_EQ(Reprint("(-2)^2"), "(-2)^2");
    EXPECT_EQ(Reprint("a^(b+c)"), "a^(b + c)");
    EXPECT_EQ(Reprint("a^(-(b*c))"), "a^-(b * c)");
    EXPECT_EQ(Reprint("-(a*b)"), "-(a * b)");
    EXPECT_EQ(Reprint("(a<b)<c"), "(a < b) < c");
    EXPECT_EQ(Reprint("a==(b!=c)"), "a == (b != c)");
}

TEST(EquationPrinter, FunctionsAndConstantsKeepTheirWords)
{
    EXPECT_EQ(Reprint("log(a)+ln(b)+log10(c)"), "log(a) + ln(b) + log10(c)");
    EXPECT_EQ(Reprint("min(a,b+1,max(c))"), "min(a, b + 1, max(c))");
    EXPECT_EQ(Reprint("pow(a,b)^pi"), "pow(a, b)^pi");
    EXPECT_EQ(Reprint("-inf<nan"), "-inf < nan");
}

TEST(EquationPrinter, NumbersAreTheShortestTextThatReadsBack)
{
    EXPECT_EQ(Reprint("0.1000000000000000055511151231257827"), "0.1");
    EXPECT_EQ(Reprint("100000000000000000000000"), "1e+23");
    EXPECT_EQ(Reprint("5e-324"), "5e-324");
    std::mt19937_64 random(3);
    for (int round = 0; round < 5000; ++round) {
        const double number = std::fabs(std::bit_cast<double>(random()));
        if (!std::isfinite(number))
            continue;
        KARWBFactory factory;
        KARWBEquation* equation = factory.CreateEquation();
        equation->PushNumber(number);
        EXPECT_EQ(Evaluate(Print(equation)), number);
    }
}

TEST(EquationPrinter, NamesAreQuotedOnlyWhenTheyMust)
{
    EXPECT_EQ(Reprint("'abc_1' + '_x'"), "abc_1 + _x");
    EXPECT_EQ(Reprint("'id12-3f' - 'a b'"), "'id12-3f' - 'a b'");
    EXPECT_EQ(Reprint("'sin' + 'pi' + '1a' + ''"), "'sin' + 'pi' + '1a' + ''");
    EXPECT_EQ(Reprint(R"('it\'s \\ so')"), R"('it\'s \\ so')");
    EXPECT_EQ(Reprint("'\n\xC3\xA4\x7F'"), R"('\x0a\xc3\xa4\x7f')");
}

TEST(EquationPrinter, EveryNameComesBack)
{
    std::mt19937 random(11);
    for (int round = 0; round < 5000; ++round) {
        std::string name(random() % 8, ' ');
        for (char& c : name)
            c = static_cast<char>(random() % 256);
        KARWBFactory factory;
        KARWBVariable* variable = factory.CreateVariable();
        variable->SetName(KARCDSString(name));
        KARWBEquation* equation = factory.CreateEquation();
        equation->PushVariable(variable);
        const Parsed again(Print(equation));
        ASSERT_EQ(again.status, KARSuccess);
        EXPECT_NE(again.factory.GetVariable(std::string_view(name)), nullptr);
    }
}

TEST(EquationPrinter, NegativeNumbersOfBuiltTreesAreSigns)
{
    KARWBFactory factory;
    KARWBEquation* power = factory.CreateEquation();
    power->PushNumber(-3.0);
    power->PushNumber(-2.0);
    ASSERT_EQ(power->Apply(KARWBOperation::Power), KARSuccess);
    EXPECT_EQ(Print(power), "(-3)^-2");
    EXPECT_TRUE(Parsed("(-3)^-2").First()->IsSameAs(*power));

    KARWBEquation* zero = factory.CreateEquation();
    zero->PushNumber(-0.0);
    EXPECT_EQ(Print(zero), "-0");
}

TEST(EquationPrinter, NumbersWithoutDigitsAreConstants)
{
    KARWBFactory factory;
    KARWBEquation* equation = factory.CreateEquation();
    equation->PushNumber(-std::numeric_limits<double>::infinity());
    equation->PushNumber(std::numeric_limits<double>::quiet_NaN());
    equation->Apply(KARWBOperation::Max);
    EXPECT_EQ(Print(equation), "max(-inf, nan)");
    EXPECT_TRUE(Parsed("max(-inf, nan)").First()->IsSameAs(*equation));
}

TEST(EquationPrinter, RefusesNothingAndHalfBuiltEquations)
{
    KARCDSString text("before");
    EXPECT_EQ(KARWBEquationPrinter::Print(nullptr, text), KARFailure);
    EXPECT_TRUE(text.IsEmpty());
    KARWBFactory factory;
    KARWBEquation* equation = factory.CreateEquation();
    EXPECT_EQ(KARWBEquationPrinter::Print(equation, text), KARFailure);
    equation->PushNumber(1.0);
    equation->PushNumber(2.0);
    EXPECT_EQ(KARWBEquationPrinter::Print(equation, text), KARFailure);
}

TEST(EquationPrinter, GeneratedTreesComeBackEqualAndPrintTheSame)
{
    std::mt19937 random(20180131);
    KARWBFactory factory;
    for (const char* name : {"a", "id0", "id1f-22", "sin", "it's", ""})
        factory.CreateVariable()->SetName(name);
    int nodes = 0;
    for (int round = 0; round < 20000; ++round) {
        KARWBEquation* equation = factory.CreateEquation();
        Generate(*equation, random);
        ASSERT_TRUE(equation->IsComplete());
        const std::string text = Print(equation);
        const Parsed again(text);
        ASSERT_EQ(again.status, KARSuccess) << text << "\n" << again.messenger.GetText();
        EXPECT_TRUE(again.First()->IsSameAs(*equation)) << text;
        EXPECT_EQ(Print(again.First()), text);
        nodes += static_cast<int>(equation->GetTree().GetNodes().size());
    }
    EXPECT_GT(nodes, 100000);
}

// Every pair of parentheses is needed: without it the text is wrong or means another tree.
TEST(EquationPrinter, NoPairOfParenthesesOfGeneratedTreesIsIdle)
{
    std::mt19937 random(5);
    KARWBFactory factory;
    for (const char* name : {"a", "b"})
        factory.CreateVariable()->SetName(name);
    int pairs = 0;
    for (int round = 0; round < 3000; ++round) {
        KARWBEquation* equation = factory.CreateEquation();
        Generate(*equation, random);
        ASSERT_TRUE(equation->IsComplete());
        const std::string text = Print(equation);
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '(')
                open.push_back(i);
            if (text[i] != ')')
                continue;
            const std::size_t start = open.back();
            open.pop_back();
            const bool isCall =
                start > 0 && std::isalnum(static_cast<unsigned char>(text[start - 1])) != 0;
            if (isCall)
                continue;
            std::string without = text;
            without[start] = ' ';
            without[i] = ' ';
            const Parsed other(without);
            EXPECT_FALSE(other.status == KARSuccess && other.First()->IsSameAs(*equation)) << text;
            ++pairs;
        }
    }
    EXPECT_GT(pairs, 1000);
}

} // namespace
