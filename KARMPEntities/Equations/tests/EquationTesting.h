// What the tests of equations share: parse, print and evaluate in one call, and generated trees.
#pragma once

#include "KARCDSIntArray.h"
#include "KARCDSString.h"
#include "KARWBEquation.h"
#include "KARWBEquationPrinter.h"
#include "KARWBEvaluator.h"
#include "KARWBFactory.h"
#include "KARWBModel.h"
#include "KARWBParser.h"
#include "KARWBParserMessenger.h"
#include "KARWBVariable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>

/// A factory with what came of parsing one text into it.
class Parsed
{
public:
    explicit Parsed(std::string_view text)
    {
        KARWBModel model;
        status = KARWBParser::Parse(text, model, ids, messenger, nullptr);
        if (!KARFailed(status))
            status = model.FillFactory(&factory, ids, 0, nullptr, nullptr);
    }

    KARWBEquation* First() const { return factory.GetEquationById(0); }

    KARWBFactory factory;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    KARStatus status = KARFailure;
};

inline std::string Print(const KARWBEquation* equation)
{
    KARCDSString text;
    EXPECT_EQ(KARWBEquationPrinter::Print(equation, text), KARSuccess);
    return std::string(std::string_view(text));
}

/// The text of the only equation of a text, or its errors.
inline std::string Reprint(std::string_view text)
{
    const Parsed parsed(text);
    if (parsed.status != KARSuccess)
        return parsed.messenger.GetText();
    return Print(parsed.First());
}

/// The text parsed into a factory in which a, b, c are 2, 3, 5, and evaluated.
inline double Evaluate(std::string_view text)
{
    const Parsed parsed(text);
    EXPECT_EQ(parsed.status, KARSuccess) << text << "\n" << parsed.messenger.GetText();
    if (parsed.status != KARSuccess)
        return std::numeric_limits<double>::quiet_NaN();
    const std::pair<const char*, double> values[] = {{"a", 2.0}, {"b", 3.0}, {"c", 5.0}};
    for (const auto& [name, value] : values)
        if (KARWBVariable* variable = parsed.factory.GetVariable(std::string_view(name)))
            variable->SetValue(value);
    double result = 0.0;
    EXPECT_EQ(KARWBEvaluator().Evaluate(*parsed.First(), result), KARSuccess);
    return result;
}

/// The first error of a text as "line:column: text", empty if it has none.
inline std::string FirstError(std::string_view text)
{
    const std::string errors = Parsed(text).messenger.GetText();
    return errors.substr(0, errors.find('\n'));
}

/// Fills an equation with operations drawn at random until one operand is left.
inline void Generate(KARWBEquation& equation, std::mt19937& random)
{
    const auto draw = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const double numbers[] = {0.0,
                              -0.0,
                              1.0,
                              -3.0,
                              0.1,
                              1e300,
                              5e-324,
                              -1e-7,
                              1e21,
                              123456.0,
                              2.5,
                              -1e22,
                              1.0 / 3.0,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()};
    const auto pushLeaf = [&] {
        KARWBFactory& factory = equation.GetFactory();
        switch (draw(3)) {
        case 0:
            return equation.PushNumber(numbers[draw(std::size(numbers))]);
        case 1:
            return equation.PushConstant(KARWBOperation::Pi);
        default:
            return equation.PushVariable(
                factory.GetVariable(static_cast<int>(draw(unsigned(factory.GetNbOfVariables())))));
        }
    };
    const auto first = static_cast<unsigned>(KARWBOperation::Negate);
    const auto last = static_cast<unsigned>(KARWBOperation::Pow);
    const auto apply = [&] {
        // Signs and powers are where parentheses are easiest to get wrong.
        const auto operation = static_cast<KARWBOperation>(first + draw(last - first + 1));
        if (draw(3) == 0)
            return equation.Apply(draw(2) == 0 ? KARWBOperation::Negate : KARWBOperation::Power);
        if (operation == KARWBOperation::Equate)
            return equation.Apply(KARWBOperation::Max, 3);
        return equation.Apply(operation);
    };
    const unsigned length = 1 + draw(40);
    for (unsigned i = 0; i < length; ++i)
        if (draw(2) == 0 || KARFailed(apply()))
            ASSERT_EQ(pushLeaf(), KARSuccess);
    while (!equation.IsComplete())
        apply();
    if (draw(8) == 0) {
        ASSERT_EQ(pushLeaf(), KARSuccess);
        ASSERT_EQ(equation.Apply(KARWBOperation::Equate), KARSuccess);
    }
}
