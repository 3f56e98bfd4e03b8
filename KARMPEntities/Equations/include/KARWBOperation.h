#pragma once

#include "KARPlatformExport.h"

#include <cstdint>

/// What one node of an equation's tree does: a leaf, an operator or a function of the language.
enum class KARWBOperation : std::uint8_t {
    Number,     ///< a literal: finite, not negative
    Variable,   ///< the value of a variable
    Pi,         ///< the constant `pi`
    Infinity,   ///< the constant `inf`
    NotANumber, ///< the constant `nan`

    Negate,         ///< -a
    Add,            ///< a + b
    Subtract,       ///< a - b
    Multiply,       ///< a * b
    Divide,         ///< a / b
    Power,          ///< a^b
    Less,           ///< a < b: 1 or 0, as the five below
    LessOrEqual,    ///< a <= b
    Greater,        ///< a > b
    GreaterOrEqual, ///< a >= b
    Equal,          ///< a == b
    NotEqual,       ///< a != b
    Equate,         ///< a = b, outermost only; its value is the residual a - b

    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Atan2,
    Sinh,
    Cosh,
    Tanh,
    Exp,
    Ln,    ///< natural logarithm
    Log,   ///< natural logarithm, as `Ln`; kept apart so that a text comes back as written
    Log10, ///< decimal logarithm
    Sqrt,
    Abs,
    Min,  ///< of one or more arguments; not a number if one of them is not
    Max,  ///< of one or more arguments; not a number if one of them is not
    Sign, ///< -1, 0 or 1
    Floor,
    Ceil,
    Round, ///< halves away from zero
    Mod,   ///< remainder with the sign of the divisor
    Pow,   ///< a^b written as a function
};
