// The words and the binding strengths of the equation language, once for parser, tree and printer.
#pragma once

#include "KARWBOperation.h"

#include <string_view>

namespace kar {

/// How tightly a form binds; a form of higher strength stands without parentheses in a lower one.
enum Strength : int {
    EquateStrength = 0,
    ComparisonStrength = 1,
    SumStrength = 2,
    ProductStrength = 3,
    SignStrength = 4,
    PowerStrength = 5,
    PrimaryStrength = 6,
};

/// One operation: its word in the text, how tightly it binds and how many arguments it takes.
struct OperationInfo
{
    KARWBOperation operation;
    std::string_view word;
    Strength strength;
    int minArguments;
    int maxArguments;
};

/// Any number of arguments.
inline constexpr int AnyNumber = 0x7FFFFFFF;

/// The row of an operation.
const OperationInfo& GetOperationInfo(KARWBOperation operation);

/// The row of a function or constant by its word, null if the language has none of that name.
const OperationInfo* FindNamedOperation(std::string_view word);

/// The operator between two operands that a symbol stands for, a leaf if it is another mark. The
/// outer `=` is not among them: it separates the sides of an equation, not of an expression.
KARWBOperation FindInfixOperator(std::string_view symbol);

/// True for operations written as a name with arguments in parentheses.
constexpr bool IsFunction(KARWBOperation operation)
{
    return operation >= KARWBOperation::Sin;
}

/// True for operations without arguments.
constexpr bool IsLeaf(KARWBOperation operation)
{
    return operation < KARWBOperation::Negate;
}

/// True for the six operations whose value is 1 or 0.
constexpr bool IsComparison(KARWBOperation operation)
{
    return operation >= KARWBOperation::Less && operation <= KARWBOperation::NotEqual;
}

/// True if an argument of an operator or a sign needs parentheses around it in text.
bool NeedsParentheses(KARWBOperation parent, bool isRightmost, KARWBOperation argument);

constexpr bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// True if a variable's name can stand in text as it is: neither quoted nor taken for another word.
bool IsPlainName(std::string_view name);

} // namespace kar
