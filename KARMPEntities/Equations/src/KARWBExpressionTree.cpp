#include "KARWBExpressionTree.h"

#include "KARWBGrammar.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

// Positions of nodes must fit into 32 bits.
constexpr std::size_t MaxNodes = 0x7FFFFFFF;

// Levels that an argument adds in text, apart from its own.
int LevelsAround(KARWBOperation parent, bool isRightmost, KARWBOperation argument)
{
    const bool isOpened = kar::IsFunction(parent) || parent == KARWBOperation::Negate ||
                          (parent == KARWBOperation::Power && isRightmost);
    return (isOpened ? 1 : 0) + (kar::NeedsParentheses(parent, isRightmost, argument) ? 1 : 0);
}

} // namespace

bool KARWBNode::operator==(const KARWBNode& other) const
{
    return operation == other.operation && argumentCount == other.argumentCount &&
           variable == other.variable &&
           std::bit_cast<std::uint64_t>(number) == std::bit_cast<std::uint64_t>(other.number);
}

KARStatus KARWBExpressionTree::PushLeaf(const KARWBNode& node)
{
    if (m_nodes.size() >= MaxNodes)
        return KARFailure;
    m_nodes.push_back(node);
    m_operands.push_back({static_cast<std::uint32_t>(m_nodes.size() - 1), 0});
    m_stackSize = std::max(m_stackSize, m_operands.size());
    return KARSuccess;
}

KARStatus KARWBExpressionTree::PushNumber(double number)
{
    KARStatus status = KARSuccess;
    if (std::isnan(number))
        return PushConstant(KARWBOperation::NotANumber);
    if (std::isinf(number)) {
        status = PushConstant(KARWBOperation::Infinity);
    } else {
        KARWBNode node;
        node.number = std::fabs(number);
        status = PushLeaf(node);
    }
    if (KARFailed(status) || !std::signbit(number))
        return status;
    return Apply(KARWBOperation::Negate);
}

KARStatus KARWBExpressionTree::PushConstant(KARWBOperation constant)
{
    if (!kar::IsLeaf(constant) || kar::GetOperationInfo(constant).word.empty())
        return KARFailure;
    KARWBNode node;
    node.operation = constant;
    return PushLeaf(node);
}

KARStatus KARWBExpressionTree::PushVariable(std::uint32_t variable)
{
    KARWBNode node;
    node.operation = KARWBOperation::Variable;
    node.variable = variable;
    return PushLeaf(node);
}

KARStatus KARWBExpressionTree::Apply(KARWBOperation operation)
{
    const int needed = kar::GetOperationInfo(operation).minArguments;
    const bool isVariadic = kar::GetOperationInfo(operation).maxArguments == kar::AnyNumber;
    return Apply(operation, isVariadic ? 2 : needed);
}

KARStatus KARWBExpressionTree::Apply(KARWBOperation operation, int argumentCount)
{
    const kar::OperationInfo& info = kar::GetOperationInfo(operation);
    if (kar::IsLeaf(operation) || argumentCount < info.minArguments ||
        argumentCount > info.maxArguments || m_nodes.size() >= MaxNodes)
        return KARFailure;
    const auto count = static_cast<std::size_t>(argumentCount);
    if (count > m_operands.size())
        return KARFailure;

    const std::size_t first = m_operands.size() - count;
    int depth = 0;
    std::uint32_t size = 1;
    for (std::size_t i = first; i < m_operands.size(); ++i) {
        const KARWBNode& argument = m_nodes[m_operands[i].root];
        if (argument.operation == KARWBOperation::Equate)
            return KARFailure;
        const bool isRightmost = i + 1 == m_operands.size();
        depth = std::max(depth, m_operands[i].depth +
                                    LevelsAround(operation, isRightmost, argument.operation));
        size += argument.size;
    }
    if (depth > MaxDepth)
        return KARFailure;

    KARWBNode node;
    node.operation = operation;
    node.argumentCount = static_cast<std::uint32_t>(argumentCount);
    node.size = size;
    m_nodes.push_back(node);
    m_operands.resize(first);
    m_operands.push_back({static_cast<std::uint32_t>(m_nodes.size() - 1), depth});
    return KARSuccess;
}
