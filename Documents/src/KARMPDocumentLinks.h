// The links that two entities must both have: a joint lists a body, and the body lists the joint.
#pragma once

#include "KARMPDeserializer.h"
#include "KARMPIdentifiers.h"
#include "KARMPSchema.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace karmp::documents {

/// The names of the items by which a link is returned, as SchemaItem::otherSide holds them.
std::vector<std::wstring_view> OtherSides(std::wstring_view names);

/// The reference that an element of an entity is or, as a list, holds; null for any other element.
const SchemaItem* ReferenceOf(const SchemaItem& element);

/// One side of a link: the element that refers, which may be a list, and the numbers of the names
/// of this item and of the target's items, one of which refers back. There are none when the target
/// need not refer back, though it may demand this side.
struct LinkSide
{
    std::wstring_view element;
    bool isList;
    std::uint32_t name;
    std::vector<std::uint32_t> otherNames;
};

/// Collects the references of a document's entities and tells which of them lack their counterpart.
class DocumentLinks
{
public:
    /// The items of a class that refer to entities.
    std::vector<LinkSide> SidesOf(const SchemaItem& entityClass);

    /// Notes all references of an entity. `sides` are those of its class.
    void Collect(std::uint32_t owner, const KARMPDeserializer& entity,
                 const std::vector<LinkSide>& sides, Identifiers& identifiers);
    /// Ends the collecting; before that nothing can be asked.
    void Sort();

    /// True when the entity of the number `owner`, of a class with the sides, refers to `target`
    /// under an element, or as an item of a list of that name, and `target` should refer back but
    /// does not. Nothing can refer back to an entity without an identifier. A target that refers
    /// to something of which `isUnknown` is true, where it should refer back, is not one-sided:
    /// that reference is the mistake.
    bool IsOneSided(std::optional<std::uint32_t> owner, const std::vector<LinkSide>& sides,
                    std::wstring_view element, std::uint32_t target,
                    const std::function<bool(std::uint32_t)>& isUnknown) const;

private:
    /// One direction of a link: the owner of the reference, its target, and the item's name.
    struct Link
    {
        std::uint32_t owner;
        std::uint32_t target;
        std::uint32_t name;

        bool operator<(const Link& other) const
        {
            return std::tie(owner, target, name) < std::tie(other.owner, other.target, other.name);
        }
    };

    std::uint32_t NumberOf(std::wstring_view name);

    std::vector<Link> m_links;
    std::unordered_map<std::wstring_view, std::uint32_t> m_names;
};

} // namespace karmp::documents
