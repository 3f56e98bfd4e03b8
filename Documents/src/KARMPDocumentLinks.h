// The links that two entities must both have: a joint lists a body, and the body lists the joint.
#pragma once

#include "KARMPDeserializer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace karmp::documents {

/// Collects the references of a document's entities and tells which of them lack their counterpart.
class DocumentLinks
{
public:
    /// Notes all references of an entity that have counterparts. `lineage` holds the names of its
    /// class and those above it. The texts live as long as the document.
    void Collect(const KARMPDeserializer& entity, const std::vector<std::string>& lineage);

    /// True when an entity refers to `target` under an element, or as an item of a list of that
    /// name, and `target` should refer back but does not.
    bool IsOneSided(const KARMPDeserializer& entity, const std::vector<std::string>& lineage,
                    std::wstring_view element, std::wstring_view target) const;

private:
    /// One direction of a link: the owner of the reference, its target, and which kind of link.
    struct Link
    {
        std::wstring_view owner;
        std::wstring_view target;
        std::size_t kind;

        friend bool operator==(const Link&, const Link&) = default;
    };
    struct Hash
    {
        std::size_t operator()(const Link& link) const noexcept;
    };

    std::unordered_set<Link, Hash> m_links;
};

} // namespace karmp::documents
