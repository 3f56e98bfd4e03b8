// The element tree that entities are read from. An operation whose sentence names no status always
// returns 0.
#pragma once

#include "KARMPExport.h"
#include "KARMPNodeStorage.h"
#include "KARMPSerializationVariable.h"
#include "KARStatus.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace karmp {
class NodeBuilder;
class NodeContent;
class NodeSource;
} // namespace karmp

/// A node of the element tree that entities are read from: children and attributes are asked for by
/// name, and texts are converted to the kind asked for. A concrete subclass fills it. A node owns
/// its children; the creator of a root owns the root. Lookups keep their state in the node: a tree
/// is read by one thread at a time.
class KARMP_API KARMPDeserializer
{
public:
    /// Children; the operations below tell in which order.
    using ElementList = std::list<const KARMPDeserializer*>;
    using ElementIterator = ElementList::const_iterator;
    using ElementVector = std::vector<const KARMPDeserializer*>;
    using ElementSpan = std::span<const KARMPDeserializer* const>;

    /// An empty node without name and value, at the current version.
    KARMPDeserializer();
    /// Deletes the children by name, in the order of the names, within a name in the order of
    /// addition, each with its whole subtree; the depth does not matter.
    virtual ~KARMPDeserializer();
    KARMPDeserializer(const KARMPDeserializer&) = delete;
    KARMPDeserializer& operator=(const KARMPDeserializer&) = delete;

    /// The node's position in its source, for messages; the library does not call it.
    virtual std::wstring Location() const = 0;

    /// Sets the version of this node alone.
    KARStatus SetVersion(std::wstring_view version);
    /// Gets the version of this node.
    KARStatus GetVersion(std::wstring& version) const;
    /// The version of this node, valid until it is set again.
    std::wstring_view Version() const { return m_version.View(); }

    /// Gets the element's name.
    KARStatus GetId(std::wstring& id) const;
    /// The element's name, valid until it is set again.
    std::wstring_view Id() const { return m_name.View(); }

    /// Converts the element's value. A stored kind that does not convert to the one asked for, or a
    /// text that is no number, is a report and KARFailure; a text that is no bool is KARFailure
    /// alone. The argument keeps its value on failure. A view lives as long as the value.
    KARStatus GetValue(std::wstring& value) const;
    KARStatus GetValue(std::wstring_view& value) const;
    KARStatus GetValue(int& value) const;
    KARStatus GetValue(double& value) const;
    KARStatus GetValue(bool& value) const;
    /// True when the element has a value, of whatever kind.
    bool HasValue() const;

    /// True when there is an attribute of the name.
    bool HasAttribute(std::wstring_view name) const;
    /// True when there is a child of the name.
    bool HasElement(std::wstring_view name) const;
    /// Number of attributes.
    std::size_t GetAttributeCount() const;
    /// The name of an attribute in the order of addition, valid for as long as the node. The index
    /// is not checked.
    std::wstring_view GetAttributeId(std::size_t index) const;

    /// Converts an attribute as GetValue does; a missing one is KARFailure without a report.
    KARStatus GetAttribute(std::wstring_view name, std::wstring& value) const;
    KARStatus GetAttribute(std::wstring_view name, std::wstring_view& value) const;
    KARStatus GetAttribute(std::wstring_view name, karmp::ReadText& value) const;
    KARStatus GetAttribute(std::wstring_view name, int& value) const;
    KARStatus GetAttribute(std::wstring_view name, double& value) const;
    KARStatus GetAttribute(std::wstring_view name, bool& value) const;

    /// Gets the next child of the name and sets this node's version on it; null and 0 when
    /// there is none. The call after the last child gives the first one and ends the walk, so that
    /// the call after that begins with the first one as well.
    KARStatus GetElement(std::wstring_view name, const KARMPDeserializer*& child) const;

    /// The same, and converts the child's value. KARFailure without a report when there is no
    /// child; a report and KARFailure, with `child` set, when the value does not convert.
    KARStatus GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                         std::wstring& value) const;
    KARStatus GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                         std::wstring_view& value) const;
    KARStatus GetElement(std::wstring_view name, const KARMPDeserializer*& child, int& value) const;
    KARStatus GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                         double& value) const;
    KARStatus GetElement(std::wstring_view name, const KARMPDeserializer*& child,
                         bool& value) const;

    /// Appends all children by name, in the order of the names, within a name in the order of
    /// addition. The children keep their versions.
    KARStatus GetElements(ElementList& elements) const;
    /// Gets the two ends of the list of the children of one name, which keep their versions. The
    /// iterators stay as they were when there is none; they are valid for as long as the
    /// node, and a child that is added later is appended to the list.
    KARStatus GetElements(std::wstring_view name, ElementIterator& begin,
                          ElementIterator& end) const;
    /// Appends all children in the order of addition. The children keep their versions.
    KARStatus GetOrderedElementList(ElementList& elements) const;

    /// Appends what GetElements does, without a list's allocation for each child.
    void AppendElements(ElementVector& elements) const;
    /// Appends what GetOrderedElementList does, in the same way.
    void AppendOrderedElements(ElementVector& elements) const;
    /// The children of one name, empty when there is none; valid until a child is added.
    ElementSpan ElementsNamed(std::wstring_view name) const;

protected:
    /// Sets the element's name.
    void SetId(std::wstring_view id);

    /// Sets the element's value and its kind.
    void SetValue(std::wstring_view value);
    void SetValue(const wchar_t* value);
    void SetValue(std::wstring&& value);
    void SetValue(int value);
    void SetValue(double value);
    void SetValue(std::same_as<bool> auto value) { SetBoolValue(value); }

    /// Adds a child under a name, which need not be the child's own, and takes ownership. A null
    /// child is a report and KARFailure. All walks of this node start again in either case.
    KARStatus AddElement(std::wstring_view name, KARMPDeserializer* child);

    /// Adds an attribute; it replaces one of the same name.
    void AddAttributeValue(std::wstring_view name, std::wstring_view value);
    void AddAttributeValue(std::wstring_view name, const wchar_t* value);
    void AddAttributeValue(std::wstring_view name, std::wstring&& value);
    void AddAttributeValue(std::wstring_view name, int value);
    void AddAttributeValue(std::wstring_view name, double value);
    void AddAttributeValue(std::wstring_view name, std::same_as<bool> auto value)
    {
        AddBoolAttributeValue(name, value);
    }

    /// A node that a source allocates and fills, as those of karmp::documents.
    KARMPDeserializer(const karmp::NodeText& name, const karmp::NodeText& version,
                      karmp::NodeSource& source)
        : m_name(name), m_version(version), m_source(&source)
    {}

private:
    friend class karmp::NodeBuilder;
    struct Release
    {
        void operator()(karmp::NodeContent* content) const noexcept;
    };

    void SetBoolValue(bool value);
    void AddBoolAttributeValue(std::wstring_view name, bool value);
    void PutAttribute(std::wstring_view name, karmp::ReadValue&& value);
    /// The value of an attribute, null when there is none.
    karmp::ReadValue* FindAttribute(std::wstring_view name) const;
    /// The bit of karmp::NodePart of a node whose source hears the names that are asked for.
    static constexpr std::uint8_t Heard = 4;
    /// Makes sure that a part, a bit of karmp::NodePart, is filled, of which an item is asked for
    /// by its name.
    void Need(std::uint8_t part, std::wstring_view name = {}) const
    {
        if ((m_missing & (part | Heard)) != 0)
            Fill(part, name);
    }
    void Fill(std::uint8_t part, std::wstring_view name) const;
    bool Lacks(std::wstring_view name) const;
    template <class T>
    KARStatus ConvertAttribute(std::wstring_view name, T& value) const;
    template <class T>
    KARStatus ConvertElement(std::wstring_view name, const KARMPDeserializer*& child,
                             T& value) const;
    static KARStatus GetAttrVal(const karmp::ReadValue& stored, std::wstring& value);
    KARStatus GetAttrVal(karmp::ReadValue& stored, std::wstring_view& value) const;
    static KARStatus GetAttrVal(const karmp::ReadValue& stored, karmp::ReadText& value);
    static KARStatus GetAttrVal(const karmp::ReadValue& stored, int& value);
    static KARStatus GetAttrVal(const karmp::ReadValue& stored, double& value);
    static KARStatus GetAttrVal(const karmp::ReadValue& stored, bool& value);
    karmp::NodeContent& NeedContent(karmp::NodeMemory* memory);
    void Clean() noexcept;

    karmp::NodeText m_name;
    /// A narrow text becomes a wide one when it is read as a view.
    mutable karmp::ReadValue m_value;
    /// Attributes, children and walks; null for a node without attributes and children.
    std::unique_ptr<karmp::NodeContent, Release> m_content;
    karmp::NodeText m_version;
    /// Null for a node that a subclass fills.
    karmp::NodeSource* m_source = nullptr;
    /// The parts that the source has not filled yet.
    mutable std::uint8_t m_missing = 0;
};
