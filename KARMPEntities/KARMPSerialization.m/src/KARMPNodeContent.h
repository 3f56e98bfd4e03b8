// Attributes and children of a reader node; a node without them has no such content.
#pragma once

#include "KARMPArenaObject.h"
#include "KARMPDeserializer.h"
#include "KARMPNameIndex.h"
#include "KARMPNodeSource.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>

namespace karmp {

/// A child and the name that it is found by.
struct NodeChild
{
    operator KARMPDeserializer*() const { return node; }

    NodeText name;
    KARMPDeserializer* node;
};

/// The children of one name, and the walk of GetElement through them.
struct ElementGroup
{
    struct Several : ArenaObject
    {
        NodeArray<KARMPDeserializer*> members;
        /// The index after the walk's current member; 0 before the walk begins.
        std::size_t walked = 0;
        /// The number of additions to the node when the walk began.
        std::size_t additions = 0;
    };

    KARMPDeserializer* const* begin() const
    {
        return several ? std::as_const(several->members).begin() : &only;
    }
    KARMPDeserializer* const* end() const
    {
        return several ? std::as_const(several->members).end() : &only + 1;
    }
    friend std::wstring_view NameOf(const ElementGroup& group) { return group.name; }

    void Append(KARMPDeserializer* child, NodeMemory* memory);
    /// The next child of the walk. A walk that began before the last addition begins again.
    KARMPDeserializer* Next(std::size_t additions) const;

    /// A view of the first child's entry.
    std::wstring_view name;
    /// The only child, or the first one.
    KARMPDeserializer* only;
    ArenaPointer<Several> several;
};

/// The lists that callers have asked for, by name.
struct ElementLists : ArenaObject
{
    std::map<std::wstring_view, KARMPDeserializer::ElementList> byName;
};

/// The children by name, for a node that has many or several of one name.
struct ElementGroups : ArenaObject
{
    const ElementGroup* Find(std::wstring_view name) const
    {
        return FindNamed(list, index.get(), name);
    }
    void Append(std::wstring_view name, KARMPDeserializer* child, NodeMemory* memory);
    /// The list of the children of one name, which follows later additions.
    const KARMPDeserializer::ElementList& ListOf(const ElementGroup& group, NodeMemory* memory);

    NodeArray<ElementGroup> list;
    OwnedIndex index;
    OwningPointer<ElementLists> lists;
    /// Counts the calls of AddElement: each ends all walks.
    std::size_t additions = 1;
};

/// The attributes and children of a node. Most nodes with children are records: a few children,
/// each with a name of its own, which are found by a scan and need no groups. `memory` is the arena
/// of the tree, null for none.
class NodeContent : public ArenaObject
{
    // Readers ask for many names that a node does not have. At the first such name the node notes a
    // bit of each child's, so that most of the others cost no scan: reading a variable takes 5 %
    // fewer instructions. The two stand here to fill the gap behind the base.
    mutable std::uint8_t m_notedChildren = 0;
    mutable std::uint32_t m_nameBits = 0;

public:
    const ReadAttribute* FindAttribute(std::wstring_view name) const
    {
        return FindNamed(attributes, attributeIndex.get(), name);
    }
    /// Appends to a list that has the capacity.
    void Append(ReadAttribute&& attribute, NodeMemory* memory);
    /// The child of a name in a node without groups.
    const NodeChild* Find(std::wstring_view name) const
    {
        if (m_notedChildren == children.size() && (m_nameBits & BitOf(name)) == 0)
            return nullptr;
        const NodeChild* const found = ScanNamed(children, name);
        if (found == nullptr)
            NoteNames();
        return found;
    }
    /// The same for a child. When an allocation fails, nothing was added and the child is still the
    /// caller's.
    void Append(NodeText name, KARMPDeserializer* child, NodeMemory* memory);
    void MakeGroups(NodeMemory* memory);
    /// The children of one name, empty when there is none.
    KARMPDeserializer::ElementSpan Named(std::wstring_view name) const;

    NodeArray<ReadAttribute> attributes;
    OwnedIndex attributeIndex;
    NodeArray<NodeChild> children;
    ArenaPointer<ElementGroups> groups;

private:
    static std::uint32_t BitOf(std::wstring_view name)
    {
        const std::size_t first = name.empty() ? 0U : static_cast<std::size_t>(name.front());
        return std::uint32_t{1} << ((first + 5 * name.size()) % 32);
    }
    void NoteNames() const;
    bool NeedsGroupsWith(const NodeText& name) const;
};

} // namespace karmp
