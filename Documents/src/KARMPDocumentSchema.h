// What of a document no entity class reads: the world's own element and the lists of families.
#pragma once

#include "KARMPSchema.h"

#include <string_view>
#include <vector>

namespace karmp::documents {

/// The list of a family in a world.
struct Family
{
    std::wstring_view element;
    std::string_view className;
};

/// The families in the order of the document.
const std::vector<Family>& Families();

/// The family whose list an element of the world is; null for any other element.
const Family* FamilyOf(const SchemaItem& item);

/// The root element with the element "World", without the entities in its lists.
const SchemaItem& RootItem();

} // namespace karmp::documents
