#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"
#include "KARWBExpressionTree.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

class KARWBFactory;
class KARWBVariable;

/// Equation of a factory: the tree of an expression over the factory's variables.
class KAR_API KARWBEquation
{
public:
    KARWBEquation(const KARWBEquation&) = delete;
    KARWBEquation& operator=(const KARWBEquation&) = delete;

    /// The id under which the factory knows the equation, from 0.
    int GetId() const { return m_id; }

    /// The factory that owns the equation.
    KARWBFactory& GetFactory() const { return m_factory; }

    /// The tree; the variable of a node is a position in the list of variables.
    const KARWBExpressionTree& GetTree() const { return m_tree; }

    /// True when the tree is one whole expression, as it always is after parsing.
    bool IsComplete() const { return m_tree.IsComplete(); }

    /// Number of different variables in the equation.
    int GetNbOfVariables() const { return static_cast<int>(m_variables.size()); }

    /// The variable at a position from 0, in the order of first appearance; null outside.
    KARWBVariable* GetVariable(int position) const;

    /// Builds the tree from the leaves up, as `KARWBExpressionTree` tells.
    KARStatus PushNumber(double number) { return m_tree.PushNumber(number); }
    KARStatus PushConstant(KARWBOperation constant) { return m_tree.PushConstant(constant); }
    KARStatus Apply(KARWBOperation operation) { return m_tree.Apply(operation); }
    KARStatus Apply(KARWBOperation operation, int argumentCount)
    {
        return m_tree.Apply(operation, argumentCount);
    }

    /// Pushes a variable of the same factory; a failure if it is null or of another factory.
    KARStatus PushVariable(KARWBVariable* variable);

    /// True when both trees are equal and speak of variables of the same names, whatever the
    /// factory.
    bool IsSameAs(const KARWBEquation& other) const;

private:
    friend class KARWBFactory;
    KARWBEquation(KARWBFactory& factory, int id) : m_factory(factory), m_id(id) {}

    KARWBFactory& m_factory;
    int m_id;
    KARWBExpressionTree m_tree;
    std::vector<KARWBVariable*> m_variables;
    std::unordered_map<const KARWBVariable*, std::uint32_t> m_positions;
};
