// Where the elements of a class refer to entities, for printers of documents.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace karmp::tool {

/// What an element within an entity's element has to do with references.
enum class LinkRole {
    None,   ///< Nothing that the class knows of.
    Group,  ///< Further elements of which some have.
    List,   ///< A list of references.
    Records ///< A list of groups that refer to entities.
};

/// The elements of a class that refer to entities, by their paths.
class ClassLinks
{
public:
    /// Those of a class by the name of its element; of a class that is unknown there are none.
    explicit ClassLinks(std::wstring_view element);

    /// The role of the element at a path, with names parted by "/".
    LinkRole RoleOf(const std::wstring& path) const;

private:
    std::unordered_map<std::wstring, LinkRole> m_roles;
};

} // namespace karmp::tool
