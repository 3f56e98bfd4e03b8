#pragma once

#include "KARMPValue.h"

#include <map>
#include <string_view>

class KARIMPExpressionLoader;
class KARMPVariable;
class KARWBEquation;

/// A value that an equation gives from variables; a solver computes it.
class KARMP_API KARMPExpression : public KARMPValue
{
    KARMP_ENTITY(KARMPExpression, KARMPValue)

public:
    using Super::GetLoader;

    /// Writes the expression; one without an equation has no "Value". A failure when the equation
    /// or the mapping could not be written, after the rest was.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the expression, which must stand under a world, in whose factory its equation is made.
    /// Whatever cannot be read is a failed check. Returns 1 when there is no equation.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as an expression's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPExpressionLoader*& loader) const;
    /// Stores an equation, which its factory keeps on owning. Null is a failed check and a failure.
    virtual KARStatus SetValue(KARWBEquation* equation);
    /// Gives the equation; null and a failure without one.
    virtual KARStatus GetValue(KARWBEquation*& equation) const;
    /// Links a variable that the equation uses and maps its position to itself. A null handle is a
    /// failed check and a failure; a variable that GetLinkedVariable gives already gives 1. A
    /// failing GetLinkedVariable is a failed check and counts as another variable.
    virtual KARStatus LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable);
    /// Gives the linked variable at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetLinkedVariable(int index, QOBSharedHandle<KARMPVariable>& variable) const
    {
        return m_variables.Get(index, variable);
    }
    /// Number of linked variables.
    virtual int GetLinkedVariableCount() const { return m_variables.Count(); }
    /// Replaces and gives the map from a position in the equation to that of a variable; always 0.
    virtual KARStatus SetVariableMapping(const std::map<int, int>& mapping)
    {
        m_variableMapping = mapping;
        return KARSuccess;
    }
    virtual KARStatus GetVariableMapping(std::map<int, int>& mapping) const
    {
        mapping = m_variableMapping;
        return KARSuccess;
    }

protected:
    KARMPExpression();
    /// A copy refers to the same equation; it has no variables and no mapping.
    KARMPExpression(const KARMPExpression& source, CopyMode mode);
    ~KARMPExpression() override;

private:
    bool IsLinked(const QOBSharedHandle<KARMPVariable>& variable, int count) const;
    bool WriteEquation(KARMPSerializer* expression) const;
    bool WriteMapping(KARMPSerializer* expression) const;
    bool ReadEquation(std::wstring_view text);
    void ReadMapping(const KARMPDeserializer* mapping);

    KARWBEquation* m_equation = nullptr; // its factory's
    KARMPLinkList<KARMPVariable> m_variables;
    std::map<int, int> m_variableMapping;
};
