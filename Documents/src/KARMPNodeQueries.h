// What the check asks of the nodes of a document.
#pragma once

#include "KARMPDocumentReader.h"

#include <string_view>

namespace karmp::documents {

inline const KARMPDocumentReader& NodeOf(const KARMPDeserializer& node)
{
    return static_cast<const KARMPDocumentReader&>(node);
}

/// The first child of a name, null when there is none.
inline const KARMPDeserializer* First(const KARMPDeserializer& node, std::wstring_view name)
{
    const KARMPDeserializer::ElementSpan found = node.ElementsNamed(name);
    return !found.empty() ? found.front() : nullptr;
}

/// The children of the first child of a name.
inline KARMPDeserializer::ElementVector ItemsOf(const KARMPDeserializer& node,
                                                std::wstring_view list)
{
    KARMPDeserializer::ElementVector items;
    if (const KARMPDeserializer* const found = First(node, list))
        found->AppendOrderedElements(items);
    return items;
}

} // namespace karmp::documents
