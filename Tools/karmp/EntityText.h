// How the tool names an entity.
#pragma once

#include "QOBSharedHandle.h"

#include <string>
#include <string_view>

class KARMPEntity;

namespace karmp::tool {

/// The name of a class without its prefix.
std::string WithoutPrefix(std::string_view className);
/// The name of an entity's class without its prefix.
std::string ClassOf(const KARMPEntity& entity);
/// The identifier of an entity; empty for one that has none.
std::wstring IdentifierOf(const KARMPEntity& entity);
/// Class and name, or class and identifier of an entity without a name: Body "Crank".
std::string TitleOf(const KARMPEntity& entity);
/// Class, name and identifier as a JSON object; "null" for a null handle.
std::string EntityJson(const QOBSharedHandle<KARMPEntity>& entity);
/// A link of an entity to another one by an item, in UTF-8, as a JSON object.
std::string LinkJson(const QOBSharedHandle<KARMPEntity>& entity, std::string_view item,
                     const QOBSharedHandle<KARMPEntity>& target);

} // namespace karmp::tool
