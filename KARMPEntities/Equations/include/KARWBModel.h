#pragma once

#include "KARCDSString.h"
#include "KARPlatformExport.h"
#include "KARStatus.h"
#include "KARWBExpressionTree.h"

#include <vector>

class KARCDSIntArray;
class KARWBBlackBoxList;
class KARWBFactory;
class KARWBParserMessenger;

/// One parsed equation: its tree and the names of its variables in the order they first appear.
struct KARWBModelEquation
{
    KARWBExpressionTree tree;
    std::vector<KARCDSString> variableNames;
};

/// Equations as parsed from one text, not yet bound to the variables of a factory.
class KAR_API KARWBModel
{
public:
    /// Number of equations held.
    int GetNbOfEquations() const { return static_cast<int>(m_equations.size()); }

    /// The equation at an index from 0; throws `std::out_of_range` outside.
    const KARWBModelEquation& GetEquation(int index) const;

    /// Takes over an equation behind the last and returns its index; -1 and no change if its tree
    /// is not complete or speaks of a variable that has no name in the list.
    int AddEquation(KARWBModelEquation equation);

    /// Forgets all equations.
    void Clear() { m_equations.clear(); }

    /// Creates every equation of the model in the factory and replaces the content of `ids` by the
    /// ids that they have there, in order. A variable that the factory knows by name is shared,
    /// any other is created. Returns 0, 1 if the model is empty, a negative status if the factory
    /// is null, `options` is not 0 (there are none) or black boxes are given (the language has
    /// none); then the factory is unchanged, `ids` empty and the messenger, if any, told why.
    KARStatus FillFactory(KARWBFactory* factory, KARCDSIntArray& ids, int options,
                          const KARWBBlackBoxList* blackBoxes,
                          KARWBParserMessenger* messenger) const;

private:
    std::vector<KARWBModelEquation> m_equations;
};
