#include "EntityText.h"

#include "KARMPEntity.h"
#include "KARTextConversion.h"
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

std::string EntityJson(const QOBSharedHandle<KARMPEntity>& entity)
{
    if (!entity)
        return "null";
    return "{\"class\": " + JsonText(ClassOf(*entity)) +
           ", \"name\": " + JsonText(kar::ToUtf8(entity->getEntityName())) +
           ", \"id\": " + JsonText(kar::ToUtf8(IdentifierOf(*entity))) + '}';
}

std::string LinkJson(const QOBSharedHandle<KARMPEntity>& entity, std::string_view item,
                     const QOBSharedHandle<KARMPEntity>& target)
{
    return "{\"entity\": " + EntityJson(entity) + ", \"item\": " + JsonText(item) +
           ", \"target\": " + EntityJson(target) + '}';
}

} // namespace karmp::tool
