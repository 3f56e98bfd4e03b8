#include "EquationTesting.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace {

TEST(EquationEvaluator, FunctionsGiveTheirValues)
{
    EXPECT_DOUBLE_EQ(Evaluate("sin(a)"), std::sin(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("cos(a)"), std::cos(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("tan(a)"), std::tan(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("asin(0.5)"), std::asin(0.5));
    EXPECT_DOUBLE_EQ(Evaluate("acos(0.5)"), std::acos(0.5));
    EXPECT_DOUBLE_EQ(Evaluate("atan(a)"), std::atan(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("atan2(a, -b)"), std::atan2(2.0, -3.0));
    EXPECT_DOUBLE_EQ(Evaluate("sinh(a)"), std::sinh(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("cosh(a)"), std::cosh(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("tanh(a)"), std::tanh(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("exp(a)"), std::exp(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("ln(a)"), std::log(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("log(a)"), std::log(2.0));
    EXPECT_DOUBLE_EQ(Evaluate("log10(1000)"), 3.0);
    EXPECT_DOUBLE_EQ(Evaluate("sqrt(9)"), 3.0);
    EXPECT_DOUBLE_EQ(Evaluate("abs(-b)"), 3.0);
    EXPECT_DOUBLE_EQ(Evaluate("pow(a, b)"), 8.0);
    EXPECT_DOUBLE_EQ(Evaluate("pi"), std::numbers::pi);
}

TEST(EquationEvaluator, RoundingFunctions)
{
    EXPECT_EQ(Evaluate("floor(-1.5)"), -2.0);
    EXPECT_EQ(Evaluate("ceil(-1.5)"), -1.0);
    EXPECT_EQ(Evaluate("round(-1.5)"), -2.0);
    EXPECT_EQ(Evaluate("round(2.5)"), 3.0);
    EXPECT_EQ(Evaluate("sign(-4)"), -1.0);
    EXPECT_EQ(Evaluate("sign(0)"), 0.0);
    EXPECT_EQ(Evaluate("sign(4)"), 1.0);
}

TEST(EquationEvaluator, RemainderTakesTheSignOfTheDivisor)
{
    EXPECT_EQ(Evaluate("mod(7, 3)"), 1.0);
    EXPECT_EQ(Evaluate("mod(-7, 3)"), 2.0);
    EXPECT_EQ(Evaluate("mod(7, -3)"), -2.0);
    EXPECT_EQ(Evaluate("mod(-7, -3)"), -1.0);
    EXPECT_EQ(Evaluate("mod(-6, 3)"), 0.0);
    EXPECT_TRUE(std::isnan(Evaluate("mod(1, 0)")));
}

TEST(EquationEvaluator, ExtremesTakeAnyNumberOfArguments)
{
    EXPECT_EQ(Evaluate("min(a)"), 2.0);
    EXPECT_EQ(Evaluate("min(c, a, b)"), 2.0);
    EXPECT_EQ(Evaluate("max(c, a, b)"), 5.0);
    EXPECT_TRUE(std::isnan(Evaluate("max(nan, 1)")));
    EXPECT_TRUE(std::isnan(Evaluate("max(1, nan, 2)")));
    EXPECT_TRUE(std::isnan(Evaluate("min(1, nan)")));
}

TEST(EquationEvaluator, ComparisonsAreOneOrZero)
{
    EXPECT_EQ(Evaluate("a < b"), 1.0);
    EXPECT_EQ(Evaluate("a > b"), 0.0);
    EXPECT_EQ(Evaluate("a <= 2"), 1.0);
    EXPECT_EQ(Evaluate("a >= 3"), 0.0);
    EXPECT_EQ(Evaluate("a == 2"), 1.0);
    EXPECT_EQ(Evaluate("a != 2"), 0.0);
    EXPECT_EQ(Evaluate("nan == nan"), 0.0);
    EXPECT_EQ(Evaluate("nan != nan"), 1.0);
}

TEST(EquationEvaluator, EqualsSignGivesTheResidual)
{
    EXPECT_EQ(Evaluate("a * b = c"), 1.0);
    EXPECT_EQ(Evaluate("a + b = c"), 0.0);
}

TEST(EquationEvaluator, ArgumentsOutsideOfTheDomainGiveNoNumber)
{
    for (const char* text : {"sqrt(-1)", "ln(-1)", "log10(-1)", "asin(2)", "acos(-2)", "0 / 0",
                             "(-1)^0.5", "inf - inf", "sin(inf)", "sign(nan)"})
        EXPECT_TRUE(std::isnan(Evaluate(text))) << text;
    EXPECT_EQ(Evaluate("1 / 0"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Evaluate("ln(0)"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(Evaluate("exp(1000)"), std::numeric_limits<double>::infinity());
}

TEST(EquationEvaluator, SeesTheValuesOfTheMoment)
{
    const Parsed parsed("2 * t + 1");
    KARWBEvaluator evaluator;
    double value = 0.0;
    ASSERT_EQ(evaluator.Evaluate(*parsed.First(), value), KARSuccess);
    EXPECT_EQ(value, 1.0);
    parsed.First()->GetVariable(0)->SetValue(4.0);
    ASSERT_EQ(evaluator.Evaluate(*parsed.First(), value), KARSuccess);
    EXPECT_EQ(value, 9.0);
}

TEST(EquationEvaluator, TakesValuesInTheOrderOfTheVariables)
{
    const Parsed parsed("y - x");
    KARWBEvaluator evaluator;
    double value = 0.0;
    ASSERT_EQ(evaluator.Evaluate(*parsed.First(), std::vector{10.0, 4.0}, value), KARSuccess);
    EXPECT_EQ(value, 6.0);
    EXPECT_EQ(evaluator.Evaluate(*parsed.First(), std::vector{10.0}, value), KARFailure);
    EXPECT_TRUE(std::isnan(value));
}

TEST(EquationEvaluator, RefusesHalfBuiltEquations)
{
    KARWBFactory factory;
    double value = 0.0;
    EXPECT_EQ(KARWBEvaluator().Evaluate(*factory.CreateEquation(), value), KARFailure);
    EXPECT_TRUE(std::isnan(value));
}

} // namespace
