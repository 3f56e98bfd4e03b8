#include "KARMPDocumentPath.h"

#include "KARMPTextEscapes.h"

#include <algorithm>

namespace karmp::documents {

namespace {

constexpr std::size_t LongestPath = 64;

// The number of a node among the children of its name, from 1; 0 when it is the only one.
std::ptrdiff_t NumberAmongSiblings(const KARMPDeserializer& parent, const KARMPDeserializer& node)
{
    const KARMPDeserializer::ElementSpan siblings = parent.ElementsNamed(node.Id());
    return siblings.size() > 1
               ? std::find(siblings.begin(), siblings.end(), &node) - siblings.begin() + 1
               : 0;
}

bool IsChild(const KARMPDeserializer& parent, const KARMPDeserializer& node)
{
    const KARMPDeserializer::ElementSpan children = parent.ElementsNamed(node.Id());
    return std::find(children.begin(), children.end(), &node) != children.end();
}

} // namespace

std::string PathText(const Way& way, std::wstring_view attribute)
{
    std::string path;
    for (std::size_t depth = 0; depth < way.size() && depth < LongestPath; ++depth) {
        path += '/';
        AppendUtf8(path, way[depth]->Id());
        const auto number = depth > 0 ? NumberAmongSiblings(*way[depth - 1], *way[depth]) : 0;
        if (number > 0)
            path += '[' + std::to_string(number) + ']';
    }
    if (way.size() > LongestPath)
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
    KARMPDeserializer::ElementVector worlds;
    root.AppendElements(worlds);
    for (const KARMPDeserializer* world : worlds) {
        KARMPDeserializer::ElementVector registries;
        world->AppendElements(registries);
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
