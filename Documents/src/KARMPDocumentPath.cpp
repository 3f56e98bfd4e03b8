#include "KARMPDocumentPath.h"

#include "KARMPDocumentNodes.h"
#include "KARMPNodeQueries.h"
#include "KARMPTextEscapes.h"

#include <algorithm>

namespace karmp::documents {

namespace {

constexpr std::size_t LongestPath = 64;

// Where a node stands or would stand among children of its name, which are in the order of the
// document: a search that takes as long as they are many would make many findings quadratic.
auto FindAmong(KARMPDeserializer::ElementSpan siblings, const KARMPDeserializer& node)
{
    return std::lower_bound(
        siblings.begin(), siblings.end(), DocumentNodes::Number(NodeOf(node)),
        [](const KARMPDeserializer* sibling, std::uint32_t number) {
            return DocumentNodes::Number(NodeOf(*sibling)) < number;
        });
}

// The number of a node among the children of its name, from 1; 0 when it is the only one.
std::ptrdiff_t NumberAmongSiblings(const KARMPDeserializer& parent, const KARMPDeserializer& node)
{
    const KARMPDeserializer::ElementSpan siblings = parent.ElementsNamed(node.Id());
    return siblings.size() > 1 ? FindAmong(siblings, node) - siblings.begin() + 1 : 0;
}

bool IsChild(const KARMPDeserializer& parent, const KARMPDeserializer& node)
{
    const KARMPDeserializer::ElementSpan children = parent.ElementsNamed(node.Id());
    const auto found = FindAmong(children, node);
    return found != children.end() && *found == &node;
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
