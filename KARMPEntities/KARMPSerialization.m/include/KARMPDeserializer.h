// KARMPDeserializer is one node of the element tree that entities read: children and attributes are
// asked for by name, and texts are converted to the kind asked for. A concrete subclass fills it.
#pragma once

#include "KARMPExport.h"
#include "KARMPNodeStorage.h"
#include "KARMPSerializationVariable.h"
#include "KARStatus.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A node of the tree on its reading side. A node owns its children; the creator of a root owns the
/// root. Walks keep their place in the node: a tree is read by one thread at a time.
class KARMP_API KARMPDeserializer
{
public:
    /// Children in an order that an operation tells.
    using ElementList = std::vector<const KARMPDeserializer*>;
    /// A place among the children of one name, valid until a child is added to the node.
    using ElementIterator = const KARMPDeserializer* const*;

    /// An empty node without name and value, at the current version.
    KARMPDeserializer();
    /// Deletes the children by name, in the order of the names, within a name in the order of
    /// addition, each with its whole subtree; the depth does not matter.
    virtual ~KARMPDeserializer();
    KARMPDeserializer(const KARMPDeserializer&) = delete;
    KARMPDeserializer& operator=(const KARMPDeserializer&) = delete;

    /// Where the node stands in its source, for messages; the library does not call it.
    virtual std::wstring Location() const = 0;

    /// Sets the version of this node alone; always 0.
    KARStatus SetVersion(std::wstring_view version);
    /// Hands out the version of this node; always 0.
    KARStatus GetVersion(std::wstring& version) const;
    /// The version of this node, valid until it is set again.
    std::wstring_view Version() const { return m_version.View(); }

    /// Hands out the element's name; always 0.
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

    /// Hands out the next child of the name and sets this node's version on it; null and 0 when
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
    /// addition; always 0. The children keep their versions.
    KARStatus GetElements(ElementList& elements) const;
    /// Hands out the two ends of the children of one name, which keep their versions; always 0. The
    /// iterators stay as they were when there is none.
    KARStatus GetElements(std::wstring_view name, ElementIterator& begin,
                          ElementIterator& end) const;
    /// Appends all children in the order of addition; always 0. The children keep their versions.
    KARStatus GetOrderedElementList(ElementList& elements) const;

    /// Bracket the reading of an element by somebody who refers to nothing of it afterwards: what a
    /// subclass makes of its attributes and children meanwhile, because they are asked for, may end
    /// with EndReading, to be made again when it is asked for again. They do nothing by default.
    virtual void BeginReading() const noexcept {}
    virtual void EndReading() const noexcept {}

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

    /// Adds a child under a name, which need not be the child's own, and takes it over. A null
    /// child is a report and KARFailure. All walks of this node start again in either case.
    KARStatus AddElement(std::wstring_view name, KARMPDeserializer* child);

    /// Adds an attribute, in place of an earlier one of the name.
    void AddAttributeValue(std::wstring_view name, std::wstring_view value);
    void AddAttributeValue(std::wstring_view name, const wchar_t* value);
    void AddAttributeValue(std::wstring_view name, std::wstring&& value);
    void AddAttributeValue(std::wstring_view name, int value);
    void AddAttributeValue(std::wstring_view name, double value);
    void AddAttributeValue(std::wstring_view name, std::same_as<bool> auto value)
    {
        AddBoolAttributeValue(name, value);
    }

    /// The same for a subclass whose nodes stand in memory for a whole tree: the texts and the
    /// lists of the nodes stand there as well, so that the tree may end with the memory, without
    /// its nodes being destroyed one by one. Such a node is filled by the operations below alone.
    KARMPDeserializer(const karmp::NodeText& name, const karmp::NodeText& version,
                      karmp::NodeMemory& memory)
        : m_memory(&memory), m_name(name), m_version(version)
    {}
    void PlaceValue(karmp::AsciiText value) { m_value.emplace<karmp::AsciiText>(value); }
    void PlaceValue(karmp::NodeText value) { m_value.emplace<karmp::NodeText>(std::move(value)); }
    /// True when a value was set.
    bool HasValue() const
    {
        Need(ContentLater);
        return m_value.index() != 0;
    }
    /// A name with a value; the value changes when a narrow text is asked for as a wide one.
    struct Attribute
    {
        karmp::NodeText name;
        mutable karmp::ReadValue value;
    };
    /// Adds attributes, each in place of an earlier one of its name. False when there was one.
    bool PlaceAttributes(std::span<const Attribute> attributes, karmp::NodeMemory& memory);
    /// Adds children, each under its own name. When memory ends, none was added to a node without
    /// children.
    void PlaceElements(std::span<KARMPDeserializer* const> children, karmp::NodeMemory& memory);
    /// The memory of the tree, null for a node that owns what it holds.
    karmp::NodeMemory* Memory() const { return m_memory; }

    /// What of a placed node is made when it is first asked for.
    enum Later : std::uint8_t {
        NothingLater = 0,
        AttributesLater = 1,
        ContentLater = 2 ///< The value and the children.
    };
    /// Sets what is made later: `Later` values, combined.
    void MakeLater(std::uint8_t parts) { m_later = parts; }
    /// What is still to be made.
    std::uint8_t Unmade() const { return m_later; }
    /// Places the attributes; called when the first of them is asked for.
    virtual void MakeAttributes() {}
    /// Places value and children; called when the first of them is asked for.
    virtual void MakeContent() {}
    /// Finds a single attribute without the others being made; null characters when there is none.
    /// False when they have to be made.
    virtual bool FindUnmade(std::wstring_view name, karmp::AsciiText& value) const;
    /// Forgets attributes, value and children, the memory of which the subclass takes back.
    void Forget() noexcept;

private:
    struct Child;
    struct Group;
    struct Groups;
    struct Content;
    /// Ends what stands in a tree's memory or in memory of its own.
    struct Release
    {
        void operator()(Content* content) const noexcept;
    };

    void SetBoolValue(bool value);
    void AddBoolAttributeValue(std::wstring_view name, bool value);
    void PutAttribute(std::wstring_view name, karmp::ReadValue&& value);
    /// The value of an attribute, null when there is none.
    karmp::ReadValue* FindAttribute(std::wstring_view name) const;
    void Need(Later part) const
    {
        if ((m_later & part) != 0)
            Make(part);
    }
    void Make(Later part) const;
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
    KARMPDeserializer* NextElement(std::wstring_view name) const;
    Content& NeedContent(karmp::NodeMemory* memory);
    void Clean() noexcept;

    karmp::NodeMemory* m_memory = nullptr;
    karmp::NodeText m_name;
    karmp::NodeText m_version;
    /// A narrow text turns into a wide one when it is asked for as such.
    mutable karmp::ReadValue m_value;
    /// Attributes and children: what most nodes do not have.
    std::unique_ptr<Content, Release> m_content;
    mutable std::uint8_t m_later = NothingLater;
};
