#include "EquationTesting.h"

#include <utility>

namespace {

std::string Repeat(std::string_view piece, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

// A text of a given number of nested levels.
std::string Nest(std::string_view open, int levels, std::string_view close)
{
    return Repeat(open, levels) + "a" + Repeat(close, levels);
}

TEST(HostileEquationText, NestingUpToTheLimitParses)
{
    const int limit = KARWBExpressionTree::MaxDepth;
    EXPECT_EQ(Parsed(Nest("(", limit, ")")).status, KARSuccess);
    EXPECT_EQ(Parsed(Nest("sin(", limit, ")")).status, KARSuccess);
    EXPECT_EQ(Parsed(Nest("-", limit, "")).status, KARSuccess);
    EXPECT_EQ(Parsed(Nest("2^", limit, "")).status, KARSuccess);
    EXPECT_EQ(Parsed(Nest("1<1+1*-(", limit / 2, ")")).status, KARSuccess);
}

TEST(HostileEquationText, NestingBeyondTheLimitIsAnErrorAtItsPlace)
{
    const int beyond = KARWBExpressionTree::MaxDepth + 1;
    const std::string error = ": nested deeper than 200 levels";
    EXPECT_EQ(FirstError(Nest("(", beyond, ")")), "1:201" + error);
    EXPECT_EQ(FirstError(Nest("-", beyond, "")), "1:201" + error);
    EXPECT_EQ(FirstError(Nest("+", beyond, "")), "1:201" + error);
    EXPECT_EQ(FirstError(Nest("sin(", beyond, ")")), "1:801" + error);
    EXPECT_EQ(FirstError(Nest("2^", beyond, "")), "1:403" + error);
}

TEST(HostileEquationText, ManyOpenParenthesesAreAnErrorAndNoCrash)
{
    for (const char* piece : {"(", "-", "sin(", "1^", "a<(", "'", "((;"}) {
        const Parsed parsed(Repeat(piece, 1000000));
        EXPECT_EQ(parsed.status, KARFailure) << piece;
        EXPECT_EQ(parsed.factory.GetNbOfEquations(), 0);
    }
}

TEST(HostileEquationText, HugeNumbersAndNamesAreReadOrRefused)
{
    EXPECT_EQ(Parsed(Repeat("9", 100000)).status, KARFailure);
    EXPECT_EQ(Evaluate("0." + Repeat("0", 300) + "1"), 1e-301);
    EXPECT_EQ(Parsed("1e" + Repeat("9", 100000)).status, KARFailure);
    const std::string name = Repeat("x", 1000000);
    EXPECT_EQ(Reprint(name), name);
}

TEST(HostileEquationText, ErrorsAboutLongWordsStayShort)
{
    const Parsed parsed(Repeat("f", 100000) + "(1); 1" + Repeat("x", 100000));
    ASSERT_EQ(parsed.messenger.GetNbOfErrors(), 2);
    EXPECT_LT(parsed.messenger.GetText().size(), 300U);
}

TEST(HostileEquationText, EmbeddedZeroIsAnErrorOutsideOfQuotes)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(FirstError("a\0+ b"sv), "1:2: unexpected character \"\\x00\"");
    EXPECT_EQ(Reprint("'a\0b'"sv), "'a\\x00b'");
}

TEST(HostileEquationText, TextBeyondTheLimitIsRefused)
{
    EXPECT_EQ(FirstError(std::string(KARWBParser::MaxTextLength + 1, ' ')),
              "1:1: the text is too long");
}

TEST(HostileEquationText, RandomBytesGiveEquationsOrErrors)
{
    std::mt19937 random(20180101);
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 60, ' ');
        for (char& c : text)
            c = static_cast<char>(random() % 256);
        const Parsed parsed(text);
        EXPECT_EQ(KARFailed(parsed.status), parsed.messenger.GetNbOfErrors() > 0);
        EXPECT_EQ(KARFailed(parsed.status), parsed.factory.GetNbOfEquations() == 0);
    }
}

TEST(HostileEquationText, RandomWordsGiveEquationsThatPrintAndComeBack)
{
    const char* const words[] = {"a", "1", "2.5", "'x y'", "pi", "nan", "sin(", "min(", "(",
                                 ")", "+", "-",   "*",     "/",  "^",   "<",    "==",   "=",
                                 ",", ";", "-",   "a",     "b",  "1e5", "(",    ")",    " "};
    std::mt19937 random(7);
    int parsedCount = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto count = 1 + random() % 9; count > 0; --count)
            text += std::string(words[random() % std::size(words)]) + " ";
        const Parsed parsed(text);
        for (int i = 0; i < parsed.factory.GetNbOfEquations(); ++i) {
            ++parsedCount;
            const std::string printed = Print(parsed.factory.GetEquationById(i));
            const Parsed again(printed);
            ASSERT_EQ(again.status, KARSuccess) << text << " -> " << printed;
            EXPECT_TRUE(again.First()->IsSameAs(*parsed.factory.GetEquationById(i))) << text;
        }
    }
    EXPECT_GT(parsedCount, 1000);
}

TEST(LongEquations, ChainsOfAMillionTermsStayFlat)
{
    const std::pair<const char*, int> chains[] = {
        {" + a", 1000000}, {" * a", 10000}, {" - a", 10000}, {" / a", 10000}};
    for (const auto& [piece, count] : chains) {
        const std::string text = "a" + Repeat(piece, count - 1);
        const Parsed parsed(text);
        ASSERT_EQ(parsed.status, KARSuccess);
        const KARWBExpressionTree& tree = parsed.First()->GetTree();
        EXPECT_EQ(tree.GetNodes().size(), 2U * static_cast<unsigned>(count) - 1);
        EXPECT_EQ(tree.GetStackSize(), 2U);
        EXPECT_EQ(tree.GetDepth(), 0);
        EXPECT_EQ(Print(parsed.First()), text);
    }
    EXPECT_EQ(Evaluate("0" + Repeat(" + a", 100000)), 200000.0);
}

TEST(LongEquations, ManyArgumentsManyVariablesAndManyEquationsAreFine)
{
    constexpr int Count = 50000;
    EXPECT_EQ(Evaluate("max(1" + Repeat(", a", Count) + ")"), 2.0);

    std::string sum = "0";
    std::string list;
    for (int i = 0; i < Count; ++i) {
        sum += "+v" + std::to_string(i);
        list += "v" + std::to_string(i) + ";";
    }
    const Parsed parsed(sum);
    ASSERT_EQ(parsed.status, KARSuccess);
    EXPECT_EQ(parsed.First()->GetNbOfVariables(), Count);
    EXPECT_EQ(parsed.factory.GetNbOfVariables(), Count);
    EXPECT_EQ(Parsed(list).factory.GetNbOfEquations(), Count);
}

TEST(LongEquations, ChainsBuiltByCallsStayFlatToo)
{
    KARWBFactory factory;
    KARWBEquation* equation = factory.CreateEquation();
    equation->PushNumber(0.0);
    for (int i = 0; i < 100000; ++i) {
        KARWBVariable* variable = factory.CreateVariable();
        variable->SetName(KARCDSString(std::to_string(i)));
        variable->SetValue(1.0);
        ASSERT_EQ(equation->PushVariable(variable), KARSuccess);
        ASSERT_EQ(equation->Apply(KARWBOperation::Add), KARSuccess);
    }
    double value = 0.0;
    EXPECT_EQ(KARWBEvaluator().Evaluate(*equation, value), KARSuccess);
    EXPECT_EQ(value, 100000.0);
    EXPECT_EQ(Parsed(Print(equation)).status, KARSuccess);
}

} // namespace
