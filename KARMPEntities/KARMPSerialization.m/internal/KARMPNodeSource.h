// Trees of reader nodes that are allocated in an arena, and whose nodes are filled when they are
// first read, as those of karmp::documents are.
#pragma once

#include "KARMPDeserializer.h"
#include "KARMPElementRecords.h"
#include "KARMPExport.h"
#include "KARMPNodeMemory.h"
#include "KARMPNodeStorage.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace karmp {

/// An attribute of a reader node; its value changes when a narrow text is read as a view.
struct ReadAttribute
{
    NodeText name;
    mutable ReadValue value;
};

/// The parts of a node that are filled one by one; combined as bits.
enum NodePart : std::uint8_t {
    NoPart = 0,
    AttributesPart = 1,
    ContentPart = 2, ///< The value and the children.
    HeardPart = 4    ///< No part: the source hears the names that the node is asked for.
};

/// The arena of nodes, their texts and their lists, which also fills these nodes. The nodes are
/// freed with the arena; their destructors are not called.
class KARMP_API NodeSource : public NodeMemory
{
public:
    NodeSource() = default;
    virtual ~NodeSource();

    /// Fills the attributes of a node; called when the first of them is read. After an exception it
    /// is called again at the next read.
    virtual void FillAttributes(KARMPDeserializer& node);
    /// Fills value and children of a node in the same manner.
    virtual void FillContent(KARMPDeserializer& node);
    /// Finds a single attribute of a node whose attributes are not filled; null characters when
    /// there is none. False when they have to be filled first.
    virtual bool FindAttribute(const KARMPDeserializer& node, std::wstring_view name,
                               AsciiText& value) const;
    /// True when a node whose content is not filled has no child of a name.
    virtual bool LacksElement(const KARMPDeserializer& node, std::wstring_view name) const;
    /// The record of a node; none when what it is filled with is not recorded.
    virtual RecordedElement Recorded(const KARMPDeserializer& node) const;
    /// Called with the name of each attribute, or child for ContentPart, that a node is asked for
    /// that NodeBuilder::Hear was called with, whether there is one or not.
    virtual void HearName(const KARMPDeserializer& node, NodePart part, std::wstring_view name);
    /// The arena of a node's attributes and children.
    virtual NodeMemory& ContentMemory(const KARMPDeserializer& node);
    /// Bracket the reading of a node by a caller that keeps no pointer into it: what is filled
    /// between the two may be freed, and is filled again when it is read again.
    virtual void BeginReading(const KARMPDeserializer& node) noexcept;
    virtual void EndReading(const KARMPDeserializer& node) noexcept;
};

/// Fills nodes that are allocated in the arena of a source, on behalf of that source.
class KARMP_API NodeBuilder
{
public:
    static void SetValue(KARMPDeserializer& node, AsciiText value)
    {
        node.m_value.emplace<AsciiText>(value);
    }
    static void SetValue(KARMPDeserializer& node, NodeText value)
    {
        node.m_value.emplace<NodeText>(std::move(value));
    }
    /// Adds attributes; each replaces one of the same name. False when one was replaced.
    static bool AddAttributes(KARMPDeserializer& node, std::span<const ReadAttribute> attributes,
                              NodeMemory& memory);
    /// Adds children, each under its own name. When an allocation fails, a node without children
    /// stays without.
    static void AddElements(KARMPDeserializer& node, std::span<KARMPDeserializer* const> children,
                            NodeMemory& memory);

    /// The parts, bits of NodePart, that are filled when they are first read.
    static void SetMissing(KARMPDeserializer& node, std::uint8_t parts) { node.m_missing = parts; }
    static std::uint8_t Missing(const KARMPDeserializer& node) { return node.m_missing; }
    /// Removes attributes, value and children, whose arena may have been freed already.
    static void Forget(KARMPDeserializer& node) noexcept;

    /// Lets a source, which outlives the node, hear what a node is asked for that a subclass fills.
    static void Hear(KARMPDeserializer& node, NodeSource& source)
    {
        static_assert(HeardPart == KARMPDeserializer::Heard);
        node.m_source = &source;
        node.m_missing |= HeardPart;
    }
    /// Null for a node that its subclass fills.
    static NodeSource* SourceOf(const KARMPDeserializer& node) { return node.m_source; }
    /// The record of a node; none without a source.
    static RecordedElement Recorded(const KARMPDeserializer& node)
    {
        return node.m_source != nullptr ? node.m_source->Recorded(node) : RecordedElement();
    }
    /// Call the same operation of the node's source, if it has one.
    static void BeginReading(const KARMPDeserializer& node) noexcept
    {
        if (node.m_source != nullptr)
            node.m_source->BeginReading(node);
    }
    static void EndReading(const KARMPDeserializer& node) noexcept
    {
        if (node.m_source != nullptr)
            node.m_source->EndReading(node);
    }
};

} // namespace karmp
