#include "KARMPDocumentPath.h"

#include "KARMPTextEscapes.h"

#include <algorithm>

namespace karmp::documents {

namespace {

constexpr std::size_t LongestWay = 64;

// Where a node stands among the children of its name, from 1; 0 when it has none beside it.
std::ptrdiff_t NumberAmongSiblings(const KARMPDeserializer& parent, const KARMPDeserializer& node)
{
    KARMPDeserializer::ElementIterator begin = nullptr;
    KARMPDeserializer::ElementIterator end = nullptr;
    parent.GetElements(node.Id(), begin, end);
    return end - begin > 1 ? std::find(begin, end, &node) - begin + 1 : 0;
}

bool IsChild(const KARMPDeserializer& parent, const KARMPDeserializer& node)
{
    KARMPDeserializer::ElementIterator begin = nullptr;
    KARMPDeserializer::ElementIterator end = nullptr;
    parent.GetElements(node.Id(), begin, end);
    return std::find(begin, end, &node) != end;
}

} // namespace

std::string PathText(const Way& way, std::wstring_view attribute)
{
    std::string path;
    for (std::size_t place = 0; place < way.size() && place < LongestWay; ++place) {
        path += '/';
        AppendUtf8(path, way[place]->Id());
        const auto number = place > 0 ? NumberAmongSiblings(*way[place - 1], *way[place]) : 0;
        if (number > 0)
            path += '[' + std::to_string(number) + ']';
    }
    if (way.size() > LongestWay)
        path += "/...";
    if (!attribute.empty()) {
        path += "/@";
        AppendUtf8(path, attribute);
    }
    return path;
}

Way FindWay(const KARMPDocumentReader& root, const KARMPDeserializer* node)
{
    if (node == nullptr)
        return {};
    KARMPDeserializer::ElementList worlds;
    root.GetElements(worlds);
    for (const KARMPDeserializer* world : worlds) {
        KARMPDeserializer::ElementList registries;
        world->GetElements(registries);
        for (const KARMPDeserializer* registry : registries) {
            if (registry == node)
                return {&root, world, registry};
            if (IsChild(*registry, *node))
                return {&root, world, registry, node};
        }
    }
    return {};
}

} // namespace karmp::documents
