// The rules of parameters, states and outputs: whether paths and bulk updates reach them.
#include "KARMPMechanismRules.h"
#include "KARMPNodeQueries.h"
#include "KARMPTextEscapes.h"

#include <string>
#include <unordered_map>

namespace karmp::documents {

namespace {

std::wstring AttributeOf(const KARMPDeserializer& node, std::wstring_view name)
{
    std::wstring text;
    if (NodeOf(node).HasAttribute(name))
        node.GetAttribute(name, text);
    return text;
}

} // namespace

void MechanismRules::NoteAttribute(std::uint32_t number, const Node& entity)
{
    if (const auto name = m_names.Of(entity, L"entityID"))
        m_attributes.try_emplace(number, NamedNode{*name, &entity});
}

void MechanismRules::CheckSiblings(const Node& entity)
{
    for (const std::wstring_view list : {L"Parameters", L"States", L"Outputs"})
        CheckNames(entity, list);
}

void MechanismRules::CheckNames(const Node& entity, std::wstring_view list)
{
    std::unordered_map<std::uint32_t, const Node*> firsts;
    for (const KARMPDeserializer* item : ItemsOf(entity, list)) {
        const auto number = m_identifiers.Of(*item);
        const auto found = number ? m_attributes.find(*number) : m_attributes.end();
        if (found == m_attributes.end())
            continue;
        const NamedNode& attribute = found->second;
        const auto [first, added] = firsts.try_emplace(attribute.name, attribute.node);
        if (!added && first->second != attribute.node)
            m_tell(Code::AmbiguousPath, entity, {First(entity, list), item},
                   "no path leads here: the one in line " + std::to_string(first->second->Line()) +
                       " has the identifier " + Quoted(AttributeOf(*attribute.node, L"entityID")) +
                       " too");
    }
}

void MechanismRules::CheckAttribute(const Node& entity)
{
    for (const std::wstring_view list :
         {L"ChildrenParameters", L"ChildrenStates", L"ChildrenOutputs"})
        CheckNames(entity, list);
    const std::wstring name = AttributeOf(entity, L"entityID");
    if (name.find(L'.') != std::wstring::npos)
        m_tell(Code::UnreachablePath, entity, {},
               "no dotted path leads to " + Quoted(name) + ": paths are split at every dot");
}

void MechanismRules::CheckStoredValue(const Node& entity)
{
    const std::size_t count = ItemsOf(entity, L"Values").size();
    const bool isBytes =
        entity.Id() == L"Output" && AttributeOf(entity, L"type") == L"octet"; // needs no value
    if (count > 1 && !isBytes)
        m_tell(Code::SeveralValues, entity, {First(entity, L"Values")},
               "no bulk update can store in it: it holds " + std::to_string(count) +
                   " values instead of one");
}

} // namespace karmp::documents
