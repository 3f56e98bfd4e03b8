// The classes that documents hold, for those who write schemas and references.
#pragma once

#include "KARMPDocumentSchema.h"

#include <string>
#include <string_view>
#include <vector>

class KARMPEntity;

namespace karmp::documents {

/// A class whose entities stand in documents.
struct EntityClass
{
    std::string name;
    /// The names of the classes above it, the nearest one first.
    std::vector<std::string> bases;
    const SchemaItem* item;

    bool IsA(std::string_view className) const;
};

/// The names of an entity's class and of those above it, the nearest one first: those that class
/// records tell, and its family, which the record of a collision layer does not.
std::vector<std::string> LineageOf(const KARMPEntity& entity);
/// True when a class is among those of a lineage.
bool HasClass(const std::vector<std::string>& lineage, std::string_view className);

/// The class of the entities of an element.
struct ElementClass
{
    /// The class and those above it; empty when there is no such class.
    std::vector<std::string> lineage;
    /// Null when its content is not known.
    const SchemaItem* item = nullptr;
};
ElementClass ClassOfElement(std::wstring_view element);

/// The classes that the factory makes and whose content is known, by name.
std::vector<EntityClass> EntityClasses();

/// A text in UTF-8 with the characters replaced that mean something to XML.
std::string Escaped(std::string_view text);

/// How the elements of a group may stand.
enum class Order {
    Once,     ///< Each at most once, in any order.
    Entries,  ///< One kind any number of times.
    Repeating ///< Any, any number of times, in any order.
};
Order OrderOf(const std::vector<const SchemaItem*>& elements);

/// The items that a version has.
std::vector<const SchemaItem*> ItemsAt(const std::vector<SchemaItem>& items,
                                       std::wstring_view version);

/// The regular expression of a number, with point or comma, blanks around it.
inline constexpr std::string_view NumberPattern =
    "\\s*[+\\-]?(([0-9]+([.,][0-9]*)?|[.,][0-9]+)([eE][+\\-]?[0-9]+)?|"
    "[iI][nN][fF]([iI][nN][iI][tT][yY])?|[nN][aA][nN])\\s*";
/// The same of a whole number.
inline constexpr std::string_view IntegerPattern = "\\s*[+\\-]?[0-9]+\\s*";

} // namespace karmp::documents
