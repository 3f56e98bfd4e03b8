// What the entity classes read from a document: the names, kinds and versions of their items.
#pragma once

#include <string_view>
#include <vector>

namespace karmp::documents {

/// What an item holds.
enum class Kind {
    Group,    ///< Elements and attributes, no text.
    Text,     ///< Any text.
    Number,   ///< A double.
    Integer,  ///< An int.
    Bool,     ///< A bool.
    Word,     ///< One of the words of a list.
    Reference ///< The identifier of an entity as the attribute "id".
};

/// What it means that an item is not there.
enum class Presence {
    Optional, ///< Nothing.
    Expected, ///< A failed check; reading goes on without it.
    Required  ///< What holds it cannot be read.
};

/// An element or an attribute.
struct Item
{
    std::wstring_view name;
    Kind kind = Kind::Group;
    Presence presence = Presence::Optional;
    std::vector<Item> attributes;
    std::vector<Item> elements;
    /// The words of a Word; the first one stands in for any other text.
    std::vector<std::wstring_view> words;
    /// The class that the target of a Reference is derived from.
    std::string_view target;
    /// The item may stand more than once.
    bool repeats = false;
    /// The item is read whatever its name.
    bool anyName = false;
    /// Version from which on, and version below which, the item is read; empty without a limit.
    std::wstring_view since;
    std::wstring_view until;
};

/// The list of a family in a world.
struct Family
{
    std::wstring_view element;
    std::string_view className;
};

/// The families in the order of the document.
const std::vector<Family>& Families();

/// The element "World" without the entities in its lists.
const Item& WorldItem();

/// The element of an entity class, null for a class whose content is not known here.
const Item* EntityItem(std::wstring_view element);

} // namespace karmp::documents
