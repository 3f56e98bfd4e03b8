#pragma once

#include "KARCDSString.h"
#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

class KARWBEquation;
class KARWBVariable;
struct KARWBModelEquation;

/// Owner of equations and of the variables that they share.
class KAR_API KARWBFactory
{
public:
    /// A factory without variables and equations.
    KARWBFactory();
    KARWBFactory(const KARWBFactory&) = delete;
    KARWBFactory& operator=(const KARWBFactory&) = delete;

    /// Destroys all equations and variables.
    virtual ~KARWBFactory();

    /// Number of equations; their ids run from 0 up to it.
    int GetNbOfEquations() const { return static_cast<int>(m_equations.size()); }

    /// The equation of an id, null if there is none.
    KARWBEquation* GetEquationById(int id) const;

    /// Creates an equation with the next id and an empty tree, to be built with its push
    /// operations.
    KARWBEquation* CreateEquation();

    /// Creates an equation with the next id from a parsed one, sharing variables by name; null if
    /// the parsed one isn't whole.
    KARWBEquation* CreateEquation(const KARWBModelEquation& parsed);

    /// Number of variables.
    int GetNbOfVariables() const { return static_cast<int>(m_variables.size()); }

    /// The variable at an index from 0 in the order of creation, null outside.
    KARWBVariable* GetVariable(int index) const;

    /// The variable of that name, null if there is none. A variable that never was given a name is
    /// not found, also not under the empty name. Takes constant time.
    KARWBVariable* GetVariable(std::string_view name) const;

    /// Creates a variable without a name.
    KARWBVariable* CreateVariable();

private:
    friend class KARWBVariable;

    KARStatus Rename(KARWBVariable& variable, const KARCDSString& name);

    std::vector<std::unique_ptr<KARWBVariable>> m_variables;
    std::vector<std::unique_ptr<KARWBEquation>> m_equations;
    std::unordered_map<std::string_view, KARWBVariable*> m_variablesByName;
};
