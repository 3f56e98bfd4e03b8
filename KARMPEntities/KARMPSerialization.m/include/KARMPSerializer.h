// The element tree that entities are written into. An operation whose sentence names no status
// always returns 0.
#pragma once

#include "KARMPExport.h"
#include "KARMPNodeMemory.h"
#include "KARMPNodeStorage.h"
#include "KARMPSerializationVariable.h"
#include "KARStatus.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class KARMPEntity;

/// A node of the element tree that entities are written into: a name, an optional value, attributes
/// and child elements. A concrete subclass creates the child nodes and renders the tree. A node
/// owns its children; the creator of a root owns the root. Names need not be unique. A tree is
/// built by one thread.
class KARMP_API KARMPSerializer
{
public:
    /// An empty node without name and value, at the current version.
    KARMPSerializer();
    /// Deletes the children in order, each with its whole subtree; the depth does not matter.
    virtual ~KARMPSerializer();
    KARMPSerializer(const KARMPSerializer&) = delete;
    KARMPSerializer& operator=(const KARMPSerializer&) = delete;

    /// Appends the subtree's rendered form to `text`; the library does not call it.
    [[nodiscard]] virtual KARStatus Render(std::wstring& text) const = 0;
    /// Renders the subtree into a file; the library does not call it.
    [[nodiscard]] virtual KARStatus Save(const char* path) const = 0;

    /// Appends an attribute. A double is rounded as by AddElement.
    KARStatus AddAttribute(std::wstring_view name, std::wstring_view value);
    KARStatus AddAttribute(std::wstring_view name, const wchar_t* value);
    KARStatus AddAttribute(std::wstring_view name, std::wstring&& value);
    KARStatus AddAttribute(std::wstring_view name, int value);
    KARStatus AddAttribute(std::wstring_view name, double value);
    KARStatus AddAttribute(std::wstring_view name, std::same_as<bool> auto value)
    {
        return AddBoolAttribute(name, value);
    }

    /// Creates a child without a value at this node's version. `child` must be null on entry and
    /// points at the child afterwards. A set pointer or a node that cannot be created is a report
    /// and KARFailure, and nothing is added.
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child);

    /// Creates a child with a value; a second report and KARFailure where the form without a value
    /// fails. A double is snapped to a grid of 1e-12, half away from zero, unless the environment
    /// variable "SERIALIZATION_PRECISION" is set or the tree keeps doubles exact.
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child, std::wstring_view value);
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child, const wchar_t* value);
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child, std::wstring&& value);
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child, int value);
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child, double value);
    KARStatus AddElement(std::wstring_view name, KARMPSerializer*& child,
                         std::same_as<bool> auto value)
    {
        return AddBoolElement(name, child, value);
    }

    /// Gets the version this node is written for.
    KARStatus GetVersion(std::wstring& version) const;
    /// The version this node is written for, valid until it is set again.
    std::wstring_view Version() const { return m_version.View(); }
    /// Sets the version of this node and of the children it creates from now on.
    KARStatus SetVersion(std::wstring_view version);

    /// True unless "NO_MP_NAME_FOR_SERIALIZATION" was set when the process first asked.
    static bool SerializeName();

protected:
    using Type = KARMPSerializationVariable::Type;

    /// A new node of the concrete class, or null.
    virtual KARMPSerializer* CreateChildElement() = 0;

public:
    /// Called when the children so far are complete: the caller neither adds to them nor uses them
    /// from now on, so that a subclass may render and free them. Does nothing by default.
    virtual void ChildrenComplete() {}
    /// Writes an entity, into this node's form and without nodes, where a subclass can: the status
    /// is what the entity's own operation would give. False, with nothing done, where that is to
    /// write it. The library calls it for each entity of a world's lists, when the children before
    /// it are complete.
    virtual bool WriteEntity(const KARMPEntity& /*entity*/, KARStatus& /*status*/) { return false; }

protected:
    /// The element's name.
    std::wstring_view GetId() const { return m_name.View(); }
    /// The kind of the element's value, and the value; a value of another kind reads as false,
    /// -1.0, -1 or an empty text.
    Type GetType() const { return karmp::TypeOf(m_value); }
    bool GetValueb() const { return karmp::FieldOf(m_value, false); }
    double GetValued() const { return karmp::FieldOf(m_value, -1.0); }
    int GetValuei() const { return karmp::FieldOf(m_value, -1); }
    std::wstring_view GetValues() const { return karmp::TextOf(m_value); }
    /// Name and value in plain form.
    KARMPSerializationVariable GetVariable() const;

    /// The children in the order of creation. The index is not checked.
    std::uint64_t GetElementCount() const { return m_elements.size(); }
    KARMPSerializer* GetElement(int index) const
    {
        return m_elements[static_cast<std::size_t>(index)];
    }

    /// The attributes in the order of addition. The index is not checked.
    std::uint64_t GetAttributeCount() const { return m_attributes.size(); }
    std::wstring_view GetAttributeId(int index) const { return Attribute(index).name.View(); }
    Type GetAttributeType(int index) const { return karmp::TypeOf(Attribute(index).value); }
    bool GetAttributeValueb(int index) const
    {
        return karmp::FieldOf(Attribute(index).value, false);
    }
    double GetAttributeValued(int index) const
    {
        return karmp::FieldOf(Attribute(index).value, -1.0);
    }
    int GetAttributeValuei(int index) const { return karmp::FieldOf(Attribute(index).value, -1); }
    std::wstring_view GetAttributeValues(int index) const
    {
        return karmp::TextOf(Attribute(index).value);
    }
    /// An attribute in plain form.
    KARMPSerializationVariable GetAttribute(int index) const;

    /// Makes this node, and the children it creates from now on, keep doubles as they are, whatever
    /// the environment says.
    void SetExactDoubles(bool exact) { m_exactDoubles = exact; }

    /// The root of a tree that is allocated in an arena and freed with the root. All nodes that
    /// CreateChildElement creates must be allocated there: their destructors are not called.
    explicit KARMPSerializer(std::unique_ptr<karmp::NodeMemory> memory);
    /// A node below such a root. Its parent sets its version.
    explicit KARMPSerializer(karmp::NodeMemory& memory) : m_memory(&memory) {}
    /// The arena of the tree; null when every node is allocated by itself.
    karmp::NodeMemory* Memory() const { return m_memory; }

private:
    KARStatus AddBoolAttribute(std::wstring_view name, bool value);
    KARStatus AddBoolElement(std::wstring_view name, KARMPSerializer*& child, bool value);
    KARStatus AddValue(std::wstring_view name, karmp::NodeValue&& value);
    KARStatus AddElementWithValue(std::wstring_view name, KARMPSerializer*& child,
                                  karmp::NodeValue&& value);
    const karmp::NodeAttribute& Attribute(int index) const
    {
        return m_attributes[static_cast<std::size_t>(index)];
    }
    double StoredDouble(double value) const;
    karmp::NodeText NameText(std::wstring_view text) const;
    karmp::NodeText ValueText(std::wstring_view text) const;
    karmp::NodeText ValueText(std::wstring&& text) const;
    void Clean() noexcept;

    karmp::NodeText m_name;
    // The flags take the padding behind the value; a KARMPSerializationVariable would cost every
    // node a string of 32 bytes more.
    [[no_unique_address]] karmp::NodeValue m_value;
    bool m_exactDoubles = false;
    bool m_ownsMemory = false;
    karmp::NodeArray<KARMPSerializer*> m_elements;
    karmp::NodeArray<karmp::NodeAttribute> m_attributes;
    karmp::NodeText m_version;
    karmp::NodeMemory* m_memory = nullptr;
};
