#include "KARMPDocumentLinks.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace karmp::documents {

namespace {

/// One side of a link: the class that refers, under which element, and whether that is a list.
struct Side
{
    std::string_view className;
    std::wstring_view element;
    bool isList;
};

/// Each side stands beside its counterpart: 0 and 1, 2 and 3, and so on.
constexpr Side Sides[] = {
    {"KARMPBody", L"Geometries", true},      {"KARMPGeometry", L"Body", false},
    {"KARMPBody", L"Joints", true},          {"KARMPJoint", L"Bodies", true},
    {"KARMPGeometry", L"Constraints", true}, {"KARMPConstraint", L"Geometries", true},
    {"KARMPVariable", L"Constraints", true}, {"KARMPConstraint", L"Variables", true},
    {"KARMPJoint", L"Constraints", true},    {"KARMPConstraint", L"Joint", false}};

std::size_t counterpartOf(std::size_t side)
{
    return side ^ 1U;
}

bool isA(const std::vector<std::string>& lineage, std::string_view className)
{
    return std::find(lineage.begin(), lineage.end(), className) != lineage.end();
}

std::wstring_view identifierOf(const KARMPDeserializer& node)
{
    std::wstring_view identifier;
    if (node.HasAttribute(L"id"))
        node.GetAttribute(L"id", identifier);
    return identifier;
}

} // namespace

std::size_t DocumentLinks::Hash::operator()(const Link& link) const noexcept
{
    const std::hash<std::wstring_view> hash;
    return (hash(link.owner) * 31U + hash(link.target)) * 31U + link.kind;
}

void DocumentLinks::Collect(const KARMPDeserializer& entity,
                            const std::vector<std::string>& lineage)
{
    const std::wstring_view owner = identifierOf(entity);
    for (std::size_t side = 0; side < std::size(Sides); ++side) {
        if (!isA(lineage, Sides[side].className))
            continue;
        KARMPDeserializer::ElementIterator begin = nullptr;
        KARMPDeserializer::ElementIterator end = nullptr;
        entity.GetElements(Sides[side].element, begin, end);
        if (begin == end)
            continue;
        if (!Sides[side].isList) {
            m_links.insert({owner, identifierOf(**begin), side});
            continue;
        }
        KARMPDeserializer::ElementList items;
        (*begin)->GetOrderedElementList(items);
        for (const KARMPDeserializer* item : items)
            m_links.insert({owner, identifierOf(*item), side});
    }
}

bool DocumentLinks::IsOneSided(const KARMPDeserializer& entity,
                               const std::vector<std::string>& lineage, std::wstring_view element,
                               std::wstring_view target) const
{
    for (std::size_t side = 0; side < std::size(Sides); ++side) {
        if (Sides[side].element == element && isA(lineage, Sides[side].className))
            return !m_links.contains({target, identifierOf(entity), counterpartOf(side)});
    }
    return false;
}

} // namespace karmp::documents
