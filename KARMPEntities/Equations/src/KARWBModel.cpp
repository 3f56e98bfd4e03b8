#include "KARWBModel.h"

#include "KARCDSIntArray.h"
#include "KARWBEquation.h"
#include "KARWBFactory.h"
#include "KARWBParserMessenger.h"

#include <algorithm>
#include <utility>

const KARWBModelEquation& KARWBModel::GetEquation(int index) const
{
    return m_equations.at(static_cast<std::size_t>(index));
}

int KARWBModel::AddEquation(KARWBModelEquation equation)
{
    const std::size_t nameCount = equation.variableNames.size();
    const auto isNamed = [nameCount](const KARWBNode& node) {
        return node.operation != KARWBOperation::Variable || node.variable < nameCount;
    };
    const std::vector<KARWBNode>& nodes = equation.tree.GetNodes();
    if (!equation.tree.IsComplete() || !std::all_of(nodes.begin(), nodes.end(), isNamed))
        return -1;
    m_equations.push_back(std::move(equation));
    return GetNbOfEquations() - 1;
}

KARStatus KARWBModel::FillFactory(KARWBFactory* factory, KARCDSIntArray& ids, int options,
                                  const KARWBBlackBoxList* blackBoxes,
                                  KARWBParserMessenger* messenger) const
{
    ids.RemoveAll();
    const char* refusal = nullptr;
    if (factory == nullptr)
        refusal = "no factory to fill";
    else if (options != 0)
        refusal = "unknown options for filling a factory";
    else if (blackBoxes != nullptr)
        refusal = "the language has no black boxes";
    if (refusal != nullptr) {
        if (messenger != nullptr)
            messenger->AddError(1, 1, refusal);
        return KARFailure;
    }
    for (const KARWBModelEquation& equation : m_equations)
        ids.Append(factory->CreateEquation(equation)->GetId());
    return m_equations.empty() ? KARUnchanged : KARSuccess;
}
