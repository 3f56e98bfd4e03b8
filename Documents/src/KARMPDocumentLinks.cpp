#include "KARMPDocumentLinks.h"

#include <algorithm>

namespace karmp::documents {

const SchemaItem* ReferenceOf(const SchemaItem& element)
{
    if (element.kind == ItemKind::Reference)
        return &element;
    const bool isList = element.kind == ItemKind::Group && element.elements.size() == 1 &&
                        element.elements[0].kind == ItemKind::Reference;
    return isList ? &element.elements[0] : nullptr;
}

std::vector<std::wstring_view> OtherSides(std::wstring_view names)
{
    std::vector<std::wstring_view> sides;
    for (std::size_t begin = 0; begin < names.size();) {
        const std::size_t end = std::min(names.find(L' ', begin), names.size());
        sides.push_back(names.substr(begin, end - begin));
        begin = end + 1;
    }
    return sides;
}

std::uint32_t DocumentLinks::NumberOf(std::wstring_view name)
{
    const auto next = static_cast<std::uint32_t>(m_names.size());
    return m_names.try_emplace(name, next).first->second;
}

std::vector<LinkSide> DocumentLinks::SidesOf(const SchemaItem& entityClass)
{
    std::vector<LinkSide> sides;
    for (const SchemaItem& element : entityClass.elements) {
        const SchemaItem* const reference = ReferenceOf(element);
        if (reference == nullptr)
            continue;
        sides.push_back({element.name, reference != &element, NumberOf(element.name), {}});
        for (const std::wstring_view name : OtherSides(reference->otherSide))
            sides.back().otherNames.push_back(NumberOf(name));
    }
    return sides;
}

void DocumentLinks::Collect(std::uint32_t owner, const KARMPDeserializer& entity,
                            const std::vector<LinkSide>& sides, Identifiers& identifiers)
{
    const auto note = [&](const KARMPDeserializer& reference, const LinkSide& side) {
        if (const auto target = identifiers.Of(reference))
            m_links.push_back({owner, *target, side.name});
    };
    for (const LinkSide& side : sides) {
        const KARMPDeserializer::ElementSpan found = entity.ElementsNamed(side.element);
        if (found.empty())
            continue;
        if (!side.isList) {
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
                               const std::vector<LinkSide>& sides, std::wstring_view element,
                               std::uint32_t target,
                               const std::function<bool(std::uint32_t)>& isUnknown) const
{
    const auto side = std::find_if(sides.begin(), sides.end(), [element](const LinkSide& entry) {
        return entry.element == element;
    });
    if (side == sides.end() || side->otherNames.empty())
        return false;
    const auto& names = side->otherNames;
    if (!owner)
        return true;
    if (std::any_of(names.begin(), names.end(), [&](std::uint32_t otherName) {
            return std::binary_search(m_links.begin(), m_links.end(),
                                      Link{target, *owner, otherName});
        }))
        return false;
    auto link = std::lower_bound(m_links.begin(), m_links.end(), Link{target, 0, 0});
    for (; link != m_links.end() && link->owner == target; ++link)
        if (isUnknown(link->target) &&
            std::find(names.begin(), names.end(), link->name) != names.end())
            return false;
    return true;
}

} // namespace karmp::documents
