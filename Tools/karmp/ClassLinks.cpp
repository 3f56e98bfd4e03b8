#include "ClassLinks.h"

#include "KARMPItems.h"
#include "KARMPSerializationServices.h"

#include <algorithm>

namespace karmp::tool {

namespace {

bool RefersToEntities(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References ||
           std::any_of(item.fields.begin(), item.fields.end(), RefersToEntities);
}

} // namespace

ClassLinks::ClassLinks(std::wstring_view element)
{
    for (const ItemInfo& item : ItemsOf(KARMPSerializationServices::to_type(element))) {
        if (!RefersToEntities(item))
            continue;
        for (auto end = item.path.find(L'/'); end != std::wstring::npos;
             end = item.path.find(L'/', end + 1))
            m_roles.emplace(item.path.substr(0, end), LinkRole::Group);
        if (item.kind == ItemKind::References)
            m_roles.emplace(item.path, LinkRole::List);
        else if (item.kind == ItemKind::Records)
            m_roles.emplace(item.path, LinkRole::Records);
    }
}

LinkRole ClassLinks::RoleOf(const std::wstring& path) const
{
    const auto found = m_roles.find(path);
    return found != m_roles.end() ? found->second : LinkRole::None;
}

} // namespace karmp::tool
