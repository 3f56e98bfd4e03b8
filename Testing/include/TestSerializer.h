#pragma once

#include "KARMPSerializer.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// A writer node for tests: its tree can be looked into by paths, printed, and made to fail.
///
/// A path names elements from a node downwards, parted by "/". "Name[2]" is the third element of
/// the name, "Name" the first one. "@name" at the end is an attribute, the first one of the name.
/// The empty path is the node itself. A getter whose path or kind of value is wrong fails the test.
class TestSerializer : public KARMPSerializer
{
public:
    /// A root at the current version.
    TestSerializer();
    /// A root at a version.
    explicit TestSerializer(std::wstring_view version);
    ~TestSerializer() override;

    using KARMPSerializer::GetAttribute;
    using KARMPSerializer::GetAttributeCount;
    using KARMPSerializer::GetAttributeId;
    using KARMPSerializer::GetAttributeType;
    using KARMPSerializer::GetAttributeValueb;
    using KARMPSerializer::GetAttributeValued;
    using KARMPSerializer::GetAttributeValuei;
    using KARMPSerializer::GetAttributeValues;
    using KARMPSerializer::GetElementCount;
    using KARMPSerializer::GetId;
    using KARMPSerializer::GetType;
    using KARMPSerializer::GetValueb;
    using KARMPSerializer::GetValued;
    using KARMPSerializer::GetValuei;
    using KARMPSerializer::GetValues;
    using KARMPSerializer::GetVariable;

    /// Appends Dump as wide text.
    KARStatus Render(std::wstring& text) const override;
    /// Writes Dump into a file.
    KARStatus Save(const char* path) const override;

    /// The child at an index.
    const TestSerializer& Child(std::size_t index) const;
    /// The element at a path, null when there is none.
    const TestSerializer* Find(std::wstring_view path) const;
    /// True when there is an element or an attribute at the path.
    bool Has(std::wstring_view path) const;
    /// Number of elements, or attributes, of the path's last name below the path's other names.
    std::size_t Count(std::wstring_view path) const;
    /// The value at a path, of any kind.
    KARMPSerializationVariable Variable(std::wstring_view path) const;
    /// The value at a path, which must be of the kind.
    std::wstring Text(std::wstring_view path) const;
    double Number(std::wstring_view path) const;
    int Integer(std::wstring_view path) const;
    bool Flag(std::wstring_view path) const;

    /// The subtree as text: a line each element, indented, with kinds and values in full.
    std::string Dump() const;

    /// Lets the n-th creation of a child in this tree fail, counted from 1 and from now on; 0 lets
    /// none fail.
    void FailCreation(std::size_t number);
    /// Number of creations of children tried in this tree since the last FailCreation.
    std::size_t Creations() const;

    /// Number of nodes of this class that are alive in the process.
    static std::size_t Alive();

protected:
    KARMPSerializer* CreateChildElement() override;

private:
    struct Script
    {
        std::size_t creations = 0;
        std::size_t failing = 0;
    };

    explicit TestSerializer(std::shared_ptr<Script> script);
    bool Resolve(std::wstring_view path, KARMPSerializationVariable& variable) const;
    KARMPSerializationVariable Expect(std::wstring_view path, Type type) const;

    std::shared_ptr<Script> m_script;
};

/// Calls `write` once on an unharmed tree, then once for each creation of a child that it tried, on
/// a fresh tree in which that creation fails. The second argument is the failing creation, from 1;
/// 0 in the first call. Gives the number of creations.
std::size_t ForEachFailedCreation(
    std::wstring_view version,
    const std::function<void(TestSerializer& root, std::size_t failing)>& write);
