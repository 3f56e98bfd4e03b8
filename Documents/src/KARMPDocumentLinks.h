// The links that two entities must both have: a joint lists a body, and the body lists the joint.
#pragma once

#include "KARMPDeserializer.h"
#include "KARMPIdentifiers.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace karmp::documents {

/// Collects the references of a document's entities and tells which of them lack their counterpart.
class DocumentLinks
{
public:
    /// Notes all references of an entity that have counterparts. `lineage` holds the names of its
    /// class and those above it.
    void Collect(std::uint32_t owner, const KARMPDeserializer& entity,
                 const std::vector<std::string>& lineage, Identifiers& identifiers);
    /// Ends the collecting; before that nothing can be asked.
    void Sort();

    /// True when the entity of the number `owner` refers to `target` under an element, or as an
    /// item of a list of that name, and `target` should refer back but does not. Nothing can refer
    /// back to an entity without an identifier.
    bool IsOneSided(std::optional<std::uint32_t> owner, const std::vector<std::string>& lineage,
                    std::wstring_view element, std::uint32_t target) const;

private:
    /// One direction of a link: the owner of the reference, its target, and which kind of link.
    struct Link
    {
        std::uint32_t owner;
        std::uint32_t target;
        std::uint32_t kind;

        bool operator<(const Link& other) const
        {
            return std::tie(owner, target, kind) < std::tie(other.owner, other.target, other.kind);
        }
    };

    std::vector<Link> m_links;
};

} // namespace karmp::documents
