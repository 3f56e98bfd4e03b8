// The schema of documents: which elements and attributes each class holds, made from the lists that
// write and read them.
#pragma once

#include "KARMPEnumerations.h"
#include "KARMPExport.h"
#include "KARMPItemKind.h"
#include "KARMPVersions.h"

#include <string_view>
#include <vector>

namespace karmp {

/// An element or an attribute. All texts live as long as the library.
struct SchemaItem
{
    /// Empty for a class that has no element of its own, a base.
    std::wstring_view name;
    /// Group, Number, Integer, Flag, Text, Word, Code or Reference.
    ItemKind kind = ItemKind::Group;
    /// Reported: reading goes on without it. Required: what holds it cannot be read.
    ItemPresence presence = ItemPresence::Reported;
    std::vector<SchemaItem> attributes;
    /// In the order of writing; any order is read.
    std::vector<SchemaItem> elements;
    /// The words of a Word, of which the first one stands in for any other text, and those that the
    /// numbers of a Code mean.
    std::vector<std::wstring_view> words;
    /// The class that the target of a Reference is derived from.
    std::string_view target;
    /// The item of the target that refers back, an element or the container of a list, or those of
    /// which one does, separated by blanks; empty for a link that one side knows.
    std::wstring_view otherSide;
    /// One sentence on the meaning.
    std::string_view says;
    KARMPPhysicalQuantity::Enum quantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    /// Version from which on, and version below which, the item exists; empty without a limit.
    std::wstring_view since;
    std::wstring_view until;
    /// The item may stand more than once.
    bool repeats = false;
    /// The item is read whatever its name.
    bool anyName = false;
    /// The target of the reference dies with the entity.
    bool isOwned = false;
    /// Sides that know the item: some are written under another name than they are read.
    bool isWritten = true;
    bool isRead = true;

    /// True when a document of the version holds the item.
    bool Applies(std::wstring_view version) const
    {
        return (since.empty() || AtLeast(version, since)) &&
               (until.empty() || !AtLeast(version, until));
    }
};

/// The element of a class with what its bases hold, theirs first; null for a class without a list.
/// Made on first need and kept. May be called by several threads.
KARMP_API const SchemaItem* SchemaOf(std::string_view className);

} // namespace karmp
