#include "KARWBEquation.h"

#include "KARWBVariable.h"

#include <algorithm>

KARWBVariable* KARWBEquation::GetVariable(int position) const
{
    const auto index = static_cast<std::size_t>(position);
    return position >= 0 && index < m_variables.size() ? m_variables[index] : nullptr;
}

KARStatus KARWBEquation::PushVariable(KARWBVariable* variable)
{
    if (variable == nullptr || &variable->GetFactory() != &m_factory)
        return KARFailure;
    // An equation that came from text has no index until somebody builds on it.
    for (std::size_t i = m_positions.size(); i < m_variables.size(); ++i)
        m_positions.emplace(m_variables[i], static_cast<std::uint32_t>(i));
    const auto next = static_cast<std::uint32_t>(m_variables.size());
    const auto [entry, isNew] = m_positions.try_emplace(variable, next);
    if (isNew)
        m_variables.push_back(variable);
    return m_tree.PushVariable(entry->second);
}

bool KARWBEquation::IsSameAs(const KARWBEquation& other) const
{
    const auto haveOneName = [](const KARWBVariable* left, const KARWBVariable* right) {
        return left->GetName() == right->GetName();
    };
    return m_tree == other.m_tree &&
           std::equal(m_variables.begin(), m_variables.end(), other.m_variables.begin(),
                      other.m_variables.end(), haveOneName);
}
