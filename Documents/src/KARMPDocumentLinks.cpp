#include "KARMPDocumentLinks.h"

#include <algorithm>
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

std::size_t CounterpartOf(std::size_t side)
{
    return side ^ 1U;
}

bool IsA(const std::vector<std::string>& lineage, std::string_view className)
{
    return std::find(lineage.begin(), lineage.end(), className) != lineage.end();
}

} // namespace

void DocumentLinks::Collect(std::uint32_t owner, const KARMPDeserializer& entity,
                            const std::vector<std::string>& lineage, Identifiers& identifiers)
{
    const auto note = [&](const KARMPDeserializer& reference, std::size_t side) {
        if (const auto target = identifiers.Of(reference))
            m_links.push_back({owner, *target, static_cast<std::uint32_t>(side)});
    };
    for (std::size_t side = 0; side < std::size(Sides); ++side) {
        if (!IsA(lineage, Sides[side].className))
            continue;
        const KARMPDeserializer::ElementSpan found = entity.ElementsNamed(Sides[side].element);
        if (found.empty())
            continue;
        if (!Sides[side].isList) {
            note(*found.front(), side);
            continue;
        }
        KARMPDeserializer::ElementVector items;
        found.front()->AppendOrderedElements(items);
        for (const KARMPDeserializer* item : items)
            note(*item, side);
    }
}

void DocumentLinks::Sort()
{
    std::sort(m_links.begin(), m_links.end());
}

bool DocumentLinks::IsOneSided(std::optional<std::uint32_t> owner,
                               const std::vector<std::string>& lineage, std::wstring_view element,
                               std::uint32_t target) const
{
    for (std::size_t side = 0; side < std::size(Sides); ++side) {
        if (Sides[side].element == element && IsA(lineage, Sides[side].className)) {
            if (!owner)
                return true;
            const Link back{target, *owner, static_cast<std::uint32_t>(CounterpartOf(side))};
            return !std::binary_search(m_links.begin(), m_links.end(), back);
        }
    }
    return false;
}

} // namespace karmp::documents
