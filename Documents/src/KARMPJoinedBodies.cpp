#include "KARMPJoinedBodies.h"

#include "KARMPNodeQueries.h"
#include "KARMPSchemaClasses.h"

namespace karmp::documents {

namespace {

/// The elements by which entities of a class join others.
struct JoiningItems
{
    std::string_view className;
    std::vector<std::wstring_view> references;
    std::vector<std::wstring_view> lists;
};

const std::vector<JoiningItems>& AllJoiningItems()
{
    static const std::vector<JoiningItems> items{
        {"KARMPBody", {}, {L"Geometries", L"ChildrenBodies"}},
        {"KARMPBody2D", {}, {L"Geometries"}},
        {"KARMPGeometry", {L"Body", L"Body2D"}, {}},
        {"KARMPJoint", {}, {L"Bodies", L"Constraints"}},
        {"KARMPJoint2D", {}, {L"Bodies2D", L"Constraints"}},
        {"KARMPConstraint", {L"Joint"}, {L"Geometries"}},
        {"KARMPConnector", {L"FirstBody", L"SecondBody", L"Joint"}, {L"Geometries"}},
        {"KARMPInteraction", {}, {L"Collidables", L"CollisionLayers", L"Entities"}},
    };
    return items;
}

} // namespace

bool IsFixedBody(const KARMPDocumentReader& body)
{
    for (const std::wstring_view name : {L"is_fixed", L"is_fixed2D"}) {
        bool isFixed = false;
        if (body.HasAttribute(name) && !KARFailed(body.GetAttribute(name, isFixed)) && isFixed)
            return true;
    }
    return false;
}

void JoinedBodies::Note(std::uint32_t number, const Lineage& lineage, const Node& entity)
{
    if (HasClass(lineage, "KARMPBody")) {
        m_bodies.push_back({number, &entity});
        if (IsFixedBody(entity))
            m_fixed.push_back(number);
    }
    for (const JoiningItems& items : AllJoiningItems()) {
        if (!HasClass(lineage, items.className))
            continue;
        for (const std::wstring_view name : items.references)
            if (const KARMPDeserializer* const reference = First(entity, name))
                Join(number, *reference);
        for (const std::wstring_view name : items.lists)
            for (const KARMPDeserializer* reference : ItemsOf(entity, name))
                Join(number, *reference);
    }
}

void JoinedBodies::Fix(const KARMPDeserializer& reference)
{
    if (const auto number = m_identifiers.Of(reference))
        m_fixed.push_back(*number);
}

void JoinedBodies::Join(std::uint32_t number, const KARMPDeserializer& reference)
{
    if (const auto other = m_identifiers.Of(reference))
        m_above[RootOf(*other)] = RootOf(number);
}

std::uint32_t JoinedBodies::RootOf(std::uint32_t number)
{
    for (std::size_t next = m_above.size(); next <= number; ++next)
        m_above.push_back(static_cast<std::uint32_t>(next));
    while (m_above[number] != number) {
        m_above[number] = m_above[m_above[number]];
        number = m_above[number];
    }
    return number;
}

void JoinedBodies::FindGroups()
{
    for (const NotedBody& body : m_bodies)
        m_groups[RootOf(body.number)].bodies.push_back(body.node);
    for (const std::uint32_t number : m_fixed)
        m_groups[RootOf(number)].isFixed = true;
}

std::vector<const JoinedBodies::Node*> JoinedBodies::FloatingChain(const Node& body)
{
    if (m_groups.empty())
        FindGroups();
    const auto number = m_identifiers.Of(body);
    const auto found = number ? m_groups.find(RootOf(*number)) : m_groups.end();
    if (found == m_groups.end() || found->second.isFixed || found->second.bodies.size() < 2 ||
        found->second.bodies.front() != &body)
        return {};
    return found->second.bodies;
}

} // namespace karmp::documents
