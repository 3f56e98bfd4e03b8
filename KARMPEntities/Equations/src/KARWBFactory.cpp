#include "KARWBFactory.h"

#include "KARWBEquation.h"
#include "KARWBModel.h"
#include "KARWBVariable.h"

namespace {

template <class T>
T* ElementAt(const std::vector<std::unique_ptr<T>>& elements, int index)
{
    const auto position = static_cast<std::size_t>(index);
    return index >= 0 && position < elements.size() ? elements[position].get() : nullptr;
}

} // namespace

KARWBFactory::KARWBFactory() = default;
KARWBFactory::~KARWBFactory() = default;

KARWBEquation* KARWBFactory::GetEquationById(int id) const
{
    return ElementAt(m_equations, id);
}

KARWBEquation* KARWBFactory::CreateEquation()
{
    std::unique_ptr<KARWBEquation> equation(new KARWBEquation(*this, GetNbOfEquations()));
    m_equations.push_back(std::move(equation));
    return m_equations.back().get();
}

KARWBEquation* KARWBFactory::CreateEquation(const KARWBModelEquation& parsed)
{
    if (!parsed.tree.IsComplete())
        return nullptr;
    for (const KARWBNode& node : parsed.tree.GetNodes())
        if (node.operation == KARWBOperation::Variable &&
            node.variable >= parsed.variableNames.size())
            return nullptr;
    KARWBEquation* equation = CreateEquation();
    equation->m_tree = parsed.tree;
    equation->m_variables.reserve(parsed.variableNames.size());
    for (const KARCDSString& name : parsed.variableNames) {
        KARWBVariable* variable = GetVariable(std::string_view(name));
        if (variable == nullptr) {
            variable = CreateVariable();
            Rename(*variable, name);
        }
        equation->m_variables.push_back(variable);
    }
    return equation;
}

KARWBVariable* KARWBFactory::GetVariable(int index) const
{
    return ElementAt(m_variables, index);
}

KARWBVariable* KARWBFactory::GetVariable(std::string_view name) const
{
    const auto found = m_variablesByName.find(name);
    return found != m_variablesByName.end() ? found->second : nullptr;
}

KARWBVariable* KARWBFactory::CreateVariable()
{
    std::unique_ptr<KARWBVariable> variable(new KARWBVariable(*this));
    m_variables.push_back(std::move(variable));
    return m_variables.back().get();
}

KARStatus KARWBFactory::Rename(KARWBVariable& variable, const KARCDSString& name)
{
    if (const KARWBVariable* holder = GetVariable(std::string_view(name)))
        return holder == &variable ? KARUnchanged : KARFailure;
    // The index looks at the text inside of the variable, so the old entry has to go first.
    if (variable.m_isNamed)
        m_variablesByName.erase(variable.m_name);
    variable.m_name = name;
    variable.m_isNamed = true;
    m_variablesByName.emplace(variable.m_name, &variable);
    return KARSuccess;
}
