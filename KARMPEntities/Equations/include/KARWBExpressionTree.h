#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"
#include "KARWBOperation.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// One node: what it does, its arguments (the subtrees that end just before it) and its leaf value.
struct KARWBNode
{
    KARWBOperation operation = KARWBOperation::Number;
    std::uint32_t argumentCount = 0; ///< number of direct arguments, 0 for a leaf
    std::uint32_t size = 1;          ///< nodes of the subtree, this one included
    std::uint32_t variable = 0;      ///< for `Variable`: its position in the owner's list
    double number = 0.0;             ///< for `Number`: its value

    /// Equal when both do the same; numbers are compared by their bits.
    KAR_API bool operator==(const KARWBNode& other) const;
};

/// Tree of an expression, kept as a list of nodes in which every node follows its arguments. Built
/// from the leaves up, as on a stack: a push adds an operand, `Apply` replaces the last operands by
/// one. Whatever can be built has a text that parses to the same tree again.
class KAR_API KARWBExpressionTree
{
public:
    /// Levels of nesting that a tree may have: each call, each sign, each exponent and each pair of
    /// parentheses of its text is one. Chains such as a + b + c are flat, however long.
    static constexpr int MaxDepth = 200;

    /// Pushes a number. A negative one becomes `Negate` of its magnitude; an infinity and a
    /// not-a-number become the constants, since these are the forms that the text has.
    KARStatus PushNumber(double number);

    /// Pushes `Pi`, `Infinity` or `NotANumber`; any other operation is a failure.
    KARStatus PushConstant(KARWBOperation constant);

    /// Pushes a variable by its position in the owner's list.
    KARStatus PushVariable(std::uint32_t variable);

    /// Applies an operator or a function to the last operands, as many as it has arguments;
    /// for `Min` and `Max` to two. Failure and no change as with the other form.
    KARStatus Apply(KARWBOperation operation);

    /// Applies an operator or a function to the last `argumentCount` operands. Failure and no
    /// change if it is a leaf, doesn't take that many, the operands are not there, the tree would
    /// be deeper than `MaxDepth`, or an operand is an `Equate`, which may only be outermost.
    KARStatus Apply(KARWBOperation operation, int argumentCount);

    /// True when exactly one operand is left: the nodes make one tree, its root last.
    bool IsComplete() const { return m_operands.size() == 1; }

    /// The nodes, every one behind its arguments.
    const std::vector<KARWBNode>& GetNodes() const { return m_nodes; }

    /// Largest number of operands that an evaluation in list order holds at one time.
    std::size_t GetStackSize() const { return m_stackSize; }

    /// Levels of nesting of the last operand, 0 for a leaf or without operands.
    int GetDepth() const { return m_operands.empty() ? 0 : m_operands.back().depth; }

    bool operator==(const KARWBExpressionTree& other) const { return m_nodes == other.m_nodes; }

private:
    struct Operand
    {
        std::uint32_t root;
        int depth;
    };

    KARStatus PushLeaf(const KARWBNode& node);

    std::vector<KARWBNode> m_nodes;
    std::vector<Operand> m_operands;
    std::size_t m_stackSize = 0;
};
