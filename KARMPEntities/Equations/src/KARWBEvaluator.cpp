#include "KARWBEvaluator.h"

#include "KARWBEquation.h"
#include "KARWBVariable.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

double Sign(double x)
{
    return x > 0.0 ? 1.0 : x < 0.0 ? -1.0 : x;
}

// The remainder takes the sign of the divisor, so that an angle falls into one turn.
double Modulo(double x, double divisor)
{
    const double remainder = std::fmod(x, divisor);
    const bool isOnOtherSide = remainder != 0.0 && (remainder < 0.0) != (divisor < 0.0);
    return isOnOtherSide ? remainder + divisor : remainder;
}

double Extreme(const double* arguments, std::size_t count, bool isMaximum)
{
    double result = arguments[0];
    for (std::size_t i = 1; i < count; ++i) {
        const double x = arguments[i];
        if (std::isnan(x) || (isMaximum ? x > result : x < result))
            result = x;
    }
    return result;
}

double Truth(bool holds)
{
    return holds ? 1.0 : 0.0;
}

double ApplyOperator(KARWBOperation operation, double a, double b)
{
    using enum KARWBOperation;
    switch (operation) {
    case Add:
        return a + b;
    case Subtract:
    case Equate:
        return a - b;
    case Multiply:
        return a * b;
    case Divide:
        return a / b;
    case Power:
    case Pow:
        return std::pow(a, b);
    case Less:
        return Truth(a < b);
    case LessOrEqual:
        return Truth(a <= b);
    case Greater:
        return Truth(a > b);
    case GreaterOrEqual:
        return Truth(a >= b);
    case Equal:
        return Truth(a == b);
    case NotEqual:
        return Truth(a != b);
    case Atan2:
        return std::atan2(a, b);
    case Mod:
        return Modulo(a, b);
    default:
        return NaN;
    }
}

double ApplyFunction(KARWBOperation operation, double x)
{
    using enum KARWBOperation;
    switch (operation) {
    case Negate:
        return -x;
    case Sin:
        return std::sin(x);
    case Cos:
        return std::cos(x);
    case Tan:
        return std::tan(x);
    case Asin:
        return std::asin(x);
    case Acos:
        return std::acos(x);
    case Atan:
        return std::atan(x);
    case Sinh:
        return std::sinh(x);
    case Cosh:
        return std::cosh(x);
    case Tanh:
        return std::tanh(x);
    case Exp:
        return std::exp(x);
    case Ln:
    case Log:
        return std::log(x);
    case Log10:
        return std::log10(x);
    case Sqrt:
        return std::sqrt(x);
    case Abs:
        return std::fabs(x);
    case KARWBOperation::Sign:
        return ::Sign(x);
    case Floor:
        return std::floor(x);
    case Ceil:
        return std::ceil(x);
    case Round:
        return std::round(x);
    default:
        return NaN;
    }
}

double ApplyOperation(const KARWBNode& node, const double* arguments)
{
    if (node.operation == KARWBOperation::Min || node.operation == KARWBOperation::Max)
        return Extreme(arguments, node.argumentCount, node.operation == KARWBOperation::Max);
    if (node.argumentCount == 2)
        return ApplyOperator(node.operation, arguments[0], arguments[1]);
    return ApplyFunction(node.operation, arguments[0]);
}

double GetLeafValue(const KARWBNode& node, std::span<const double> variables)
{
    switch (node.operation) {
    case KARWBOperation::Number:
        return node.number;
    case KARWBOperation::Variable:
        return variables[node.variable];
    case KARWBOperation::Pi:
        return std::numbers::pi;
    case KARWBOperation::Infinity:
        return std::numeric_limits<double>::infinity();
    default:
        return NaN;
    }
}

} // namespace

KARStatus KARWBEvaluator::Evaluate(const KARWBEquation& equation, double& value)
{
    m_values.clear();
    for (int i = 0; i < equation.GetNbOfVariables(); ++i)
        m_values.push_back(equation.GetVariable(i)->GetValue());
    return Evaluate(equation, m_values, value);
}

KARStatus KARWBEvaluator::Evaluate(const KARWBEquation& equation, std::span<const double> variables,
                                   double& value)
{
    value = NaN;
    const auto needed = static_cast<std::size_t>(equation.GetNbOfVariables());
    if (!equation.IsComplete() || variables.size() < needed)
        return KARFailure;
    const KARWBExpressionTree& tree = equation.GetTree();
    if (m_stack.size() < tree.GetStackSize())
        m_stack.resize(tree.GetStackSize());
    double* top = m_stack.data();
    for (const KARWBNode& node : tree.GetNodes()) {
        top -= node.argumentCount;
        *top = node.argumentCount == 0 ? GetLeafValue(node, variables) : ApplyOperation(node, top);
        ++top;
    }
    value = m_stack.front();
    return KARSuccess;
}
