#pragma once

#include "KARMPDeserializer.h"
#include "TestSerializer.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// How a reader's tree is made of a writer's.
struct TestTreeForm
{
    /// All values as text, as a parser without types gives them.
    bool asText = false;
    /// The version of the root; by default the written tree's.
    std::wstring version = {};
    /// The version is set on every node, not only on the root.
    bool versionOnEveryNode = false;
    /// The attribute or element, with its subtree, that is left out: counted from 1, from the root
    /// down, a node's attributes before its elements. 0 leaves none out.
    std::size_t leftOut = 0;
    /// The value that is replaced by one that does not convert, counted from 1 in the same order:
    /// a text by a number, all others by the text "?". With all values as text, a text becomes "?".
    std::size_t spoilt = 0;
};

/// A reader node for tests: built by hand in chained calls, or from a tree that was written.
///
///     TestDeserializer body(L"Body");
///     body.Attribute(L"id", L"B1").Add(L"Translation").Leaf(L"Vx", 1.0).Leaf(L"Vy", 2.0);
class TestDeserializer : public KARMPDeserializer
{
public:
    /// A root with a name.
    explicit TestDeserializer(std::wstring_view name = {});
    ~TestDeserializer() override;

    /// A reader's tree with the content of a writer's.
    static std::unique_ptr<TestDeserializer> From(const TestSerializer& tree,
                                                  const TestTreeForm& form = {});

    using KARMPDeserializer::AddAttributeValue;
    using KARMPDeserializer::AddElement;
    using KARMPDeserializer::SetId;
    using KARMPDeserializer::SetValue;

    /// The path from the root, as TestSerializer writes paths, without numbers.
    std::wstring Location() const override;

    /// Adds a child and gives the child.
    TestDeserializer& Add(std::wstring_view name);
    /// Adds a child with a value and gives this node.
    template <class Value>
    TestDeserializer& Leaf(std::wstring_view name, Value&& value)
    {
        Add(name).SetValue(std::forward<Value>(value));
        return *this;
    }
    /// Adds a child that refers to an entity by its identifier and gives this node.
    TestDeserializer& Reference(std::wstring_view name, std::wstring_view id)
    {
        Add(name).AddAttributeValue(L"id", id);
        return *this;
    }
    /// Adds or replaces an attribute and gives this node.
    template <class Value>
    TestDeserializer& Attribute(std::wstring_view name, Value&& value)
    {
        AddAttributeValue(name, std::forward<Value>(value));
        return *this;
    }
    /// Sets the value and gives this node.
    template <class Value>
    TestDeserializer& Holding(Value&& value)
    {
        SetValue(std::forward<Value>(value));
        return *this;
    }
    /// Sets the version and gives this node.
    TestDeserializer& At(std::wstring_view version)
    {
        SetVersion(version);
        return *this;
    }

    /// Number of nodes of this class that are alive in the process.
    static std::size_t Alive();

private:
    TestDeserializer* m_parent = nullptr;
};

/// Calls `read` once for each attribute and element under the root of a written tree, with a
/// reader's tree that lacks it; the second argument is the path of what is missing. Gives the
/// number of calls.
std::size_t ForEachMissingItem(
    const TestSerializer& tree, const TestTreeForm& form,
    const std::function<void(TestDeserializer& root, const std::wstring& missing)>& read);

/// The same for each value, which is there but spoilt.
std::size_t ForEachSpoiltValue(
    const TestSerializer& tree, const TestTreeForm& form,
    const std::function<void(TestDeserializer& root, const std::wstring& spoilt)>& read);
