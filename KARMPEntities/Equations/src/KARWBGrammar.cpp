#include "KARWBGrammar.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_map>

namespace kar {
namespace {

using enum KARWBOperation;

constexpr std::array Table = {
    OperationInfo{Number, "", PrimaryStrength, 0, 0},
    OperationInfo{Variable, "", PrimaryStrength, 0, 0},
    OperationInfo{Pi, "pi", PrimaryStrength, 0, 0},
    OperationInfo{Infinity, "inf", PrimaryStrength, 0, 0},
    OperationInfo{NotANumber, "nan", PrimaryStrength, 0, 0},
    OperationInfo{Negate, "-", SignStrength, 1, 1},
    OperationInfo{Add, "+", SumStrength, 2, 2},
    OperationInfo{Subtract, "-", SumStrength, 2, 2},
    OperationInfo{Multiply, "*", ProductStrength, 2, 2},
    OperationInfo{Divide, "/", ProductStrength, 2, 2},
    OperationInfo{Power, "^", PowerStrength, 2, 2},
    OperationInfo{Less, "<", ComparisonStrength, 2, 2},
    OperationInfo{LessOrEqual, "<=", ComparisonStrength, 2, 2},
    OperationInfo{Greater, ">", ComparisonStrength, 2, 2},
    OperationInfo{GreaterOrEqual, ">=", ComparisonStrength, 2, 2},
    OperationInfo{Equal, "==", ComparisonStrength, 2, 2},
    OperationInfo{NotEqual, "!=", ComparisonStrength, 2, 2},
    OperationInfo{Equate, "=", EquateStrength, 2, 2},
    OperationInfo{Sin, "sin", PrimaryStrength, 1, 1},
    OperationInfo{Cos, "cos", PrimaryStrength, 1, 1},
    OperationInfo{Tan, "tan", PrimaryStrength, 1, 1},
    OperationInfo{Asin, "asin", PrimaryStrength, 1, 1},
    OperationInfo{Acos, "acos", PrimaryStrength, 1, 1},
    OperationInfo{Atan, "atan", PrimaryStrength, 1, 1},
    OperationInfo{Atan2, "atan2", PrimaryStrength, 2, 2},
    OperationInfo{Sinh, "sinh", PrimaryStrength, 1, 1},
    OperationInfo{Cosh, "cosh", PrimaryStrength, 1, 1},
    OperationInfo{Tanh, "tanh", PrimaryStrength, 1, 1},
    OperationInfo{Exp, "exp", PrimaryStrength, 1, 1},
    OperationInfo{Ln, "ln", PrimaryStrength, 1, 1},
    OperationInfo{Log, "log", PrimaryStrength, 1, 1},
    OperationInfo{Log10, "log10", PrimaryStrength, 1, 1},
    OperationInfo{Sqrt, "sqrt", PrimaryStrength, 1, 1},
    OperationInfo{Abs, "abs", PrimaryStrength, 1, 1},
    OperationInfo{Min, "min", PrimaryStrength, 1, AnyNumber},
    OperationInfo{Max, "max", PrimaryStrength, 1, AnyNumber},
    OperationInfo{Sign, "sign", PrimaryStrength, 1, 1},
    OperationInfo{Floor, "floor", PrimaryStrength, 1, 1},
    OperationInfo{Ceil, "ceil", PrimaryStrength, 1, 1},
    OperationInfo{Round, "round", PrimaryStrength, 1, 1},
    OperationInfo{Mod, "mod", PrimaryStrength, 2, 2},
    OperationInfo{Pow, "pow", PrimaryStrength, 2, 2},
};

constexpr bool IsInOrder()
{
    for (std::size_t i = 0; i < Table.size(); ++i)
        if (static_cast<std::size_t>(Table[i].operation) != i)
            return false;
    return true;
}
static_assert(IsInOrder(), "a row's index is its operation");

} // namespace

const OperationInfo& GetOperationInfo(KARWBOperation operation)
{
    return Table[static_cast<std::size_t>(operation)];
}

const OperationInfo* FindNamedOperation(std::string_view word)
{
    static const auto byWord = [] {
        std::unordered_map<std::string_view, const OperationInfo*> rows;
        for (const OperationInfo& row : Table)
            if (!row.word.empty() && IsLetter(row.word.front()))
                rows.emplace(row.word, &row);
        return rows;
    }();
    const auto found = byWord.find(word);
    return found != byWord.end() ? found->second : nullptr;
}

KARWBOperation FindInfixOperator(std::string_view symbol)
{
    const bool isLong = symbol.size() > 1;
    switch (symbol.empty() ? '\0' : symbol.front()) {
    case '+':
        return Add;
    case '-':
        return Subtract;
    case '*':
        return Multiply;
    case '/':
        return Divide;
    case '^':
        return Power;
    case '<':
        return isLong ? LessOrEqual : Less;
    case '>':
        return isLong ? GreaterOrEqual : Greater;
    case '=':
        return isLong ? Equal : Number;
    case '!':
        return NotEqual;
    default:
        return Number;
    }
}

bool NeedsParentheses(KARWBOperation parent, bool isRightmost, KARWBOperation argument)
{
    const Strength outer = GetOperationInfo(parent).strength;
    const Strength inner = GetOperationInfo(argument).strength;
    switch (outer) {
    case PrimaryStrength: // a comma or a parenthesis ends each argument
    case EquateStrength:
        return false;
    case ComparisonStrength: // comparisons don't chain
        return inner <= outer;
    case SignStrength: // signs may follow each other
        return inner < outer;
    case PowerStrength: // a sign or a further power may stand in an exponent
        return isRightmost ? inner < SignStrength : inner <= outer;
    default: // sums and products group from the left
        return isRightmost ? inner <= outer : inner < outer;
    }
}

bool IsPlainName(std::string_view name)
{
    const auto isInner = [](char c) { return IsLetter(c) || IsDigit(c); };
    return !name.empty() && IsLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), isInner) && FindNamedOperation(name) == nullptr;
}

} // namespace kar
