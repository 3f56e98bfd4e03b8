#include "EntityText.h"

#include "KARMPEntity.h"
#include "Output.h"

namespace karmp::tool {

std::string WithoutPrefix(std::string_view className)
{
    constexpr std::string_view Prefix = "KARMP";
    return Printable(className.substr(className.starts_with(Prefix) ? Prefix.size() : 0));
}

std::string ClassOf(const KARMPEntity& entity)
{
    return WithoutPrefix(entity.getClassInfo().getName());
}

std::wstring IdentifierOf(const KARMPEntity& entity)
{
    std::wstring identifier;
    entity.GetIdentifier(identifier);
    return identifier;
}

std::string TitleOf(const KARMPEntity& entity)
{
    return ClassOf(entity) + ' ' + Title(entity.getEntityName(), IdentifierOf(entity));
}

} // namespace karmp::tool
