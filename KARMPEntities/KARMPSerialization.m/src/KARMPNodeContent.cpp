#include "KARMPNodeContent.h"

#include <algorithm>

namespace karmp {

void ElementGroup::Append(KARMPDeserializer* child, NodeMemory* memory)
{
    if (!several) {
        ArenaPointer<Several> made(NewIn<Several>(memory));
        made->members.GrowIfFull(memory);
        made->members.Append(only);
        several = std::move(made);
    }
    several->members.GrowIfFull(memory);
    several->members.Append(child);
}

// A single child needs no walk.
KARMPDeserializer* ElementGroup::Next(std::size_t additions) const
{
    if (!several)
        return only;
    if (several->additions != additions) {
        several->additions = additions;
        several->walked = 0;
    }
    if (several->walked == several->members.size()) {
        several->walked = 0;
        return several->members[0];
    }
    return several->members[several->walked++];
}

void ElementGroups::Append(std::wstring_view name, KARMPDeserializer* child, NodeMemory* memory)
{
    if (const ElementGroup* const found = Find(name)) {
        KARMPDeserializer::ElementList* wanted = nullptr;
        if (lists) {
            const auto asked = lists->byName.find(name);
            wanted = asked != lists->byName.end() ? &asked->second : nullptr;
        }
        // The list's entry is allocated first: no later step fails.
        KARMPDeserializer::ElementList added;
        if (wanted != nullptr)
            added.push_back(child);
        list[static_cast<std::size_t>(found - list.begin())].Append(child, memory);
        if (wanted != nullptr)
            wanted->splice(wanted->end(), added);
        return;
    }
    list.GrowIfFull(memory);
    IndexNext(index, list, name, memory);
    list.Append({name, child, nullptr});
}

const KARMPDeserializer::ElementList& ElementGroups::ListOf(const ElementGroup& group,
                                                            NodeMemory* memory)
{
    if (!lists)
        lists = NewOwningIn<ElementLists>(memory);
    const auto asked = lists->byName.find(group.name);
    if (asked != lists->byName.end())
        return asked->second;
    return lists->byName
        .emplace(group.name, KARMPDeserializer::ElementList(group.begin(), group.end()))
        .first->second;
}

void NodeContent::Append(ReadAttribute&& attribute, NodeMemory* memory)
{
    IndexNext(attributeIndex, attributes, attribute.name.View(), memory);
    attributes.Append(std::move(attribute));
}

// A node without groups has few children.
void NodeContent::NoteNames() const
{
    static_assert(LongestScan <= UINT8_MAX);
    m_nameBits = 0;
    for (const NodeChild& child : children)
        m_nameBits |= BitOf(NameOf(child));
    m_notedChildren = static_cast<std::uint8_t>(children.size());
}

bool NodeContent::NeedsGroupsWith(const NodeText& name) const
{
    return children.size() >= LongestScan ||
           std::any_of(
               children.begin(), children.end(),
               [&name](const NodeChild& child) { return child.name == name; });
}

void NodeContent::MakeGroups(NodeMemory* memory)
{
    ArenaPointer<ElementGroups> made(NewIn<ElementGroups>(memory));
    for (const NodeChild& child : children)
        made->Append(NameOf(child), child, memory);
    groups = std::move(made);
}

void NodeContent::Append(NodeText name, KARMPDeserializer* child, NodeMemory* memory)
{
    if (!groups && NeedsGroupsWith(name))
        MakeGroups(memory);
    if (groups)
        groups->Append(name.View(), child, memory);
    children.Append({std::move(name), child});
}

KARMPDeserializer::ElementSpan NodeContent::Named(std::wstring_view name) const
{
    if (groups) {
        const ElementGroup* const group = groups->Find(name);
        return group != nullptr ? KARMPDeserializer::ElementSpan(group->begin(), group->end())
                                : KARMPDeserializer::ElementSpan();
    }
    const NodeChild* const child = Find(name);
    return child != nullptr ? KARMPDeserializer::ElementSpan(&child->node, 1)
                            : KARMPDeserializer::ElementSpan();
}

} // namespace karmp
