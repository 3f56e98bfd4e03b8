// Trees whose nodes, texts and lists are allocated in an arena.
#include "AllocationCounter.h"
#include "KARMPNodeSource.h"
#include "KARMPTestFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

using karmp::NodeBuilder;
using karmp::NodeMemory;
using karmp::NodeSource;
using karmp::NodeText;

class ArenaNode final : public KARMPDeserializer
{
public:
    ArenaNode(NodeSource& memory, std::wstring_view name)
        : KARMPDeserializer(NodeText::Name(name, memory), NodeText::CurrentVersion(), memory)
    {}
    std::wstring Location() const override { return {}; }

    static ArenaNode* Make(NodeSource& memory, std::wstring_view name)
    {
        return ::new (memory.Allocate(sizeof(ArenaNode))) ArenaNode(memory, name);
    }
    ArenaNode* Add(std::wstring_view name)
    {
        ArenaNode* const child = Make(Memory(), name);
        KARMPDeserializer* const children[] = {child};
        NodeBuilder::AddElements(*this, children, Memory());
        return child;
    }
    bool AddAttribute(std::wstring_view name, std::wstring_view value)
    {
        return Attributes({{NodeText::Name(name, Memory()), NodeText::Copy(value, Memory())}});
    }
    void AddAll(const std::vector<KARMPDeserializer*>& children)
    {
        NodeBuilder::AddElements(*this, children, Memory());
    }
    bool Attributes(const std::vector<karmp::ReadAttribute>& attributes)
    {
        return NodeBuilder::AddAttributes(*this, attributes, Memory());
    }

private:
    NodeSource& Memory() const { return *NodeBuilder::SourceOf(*this); }
};

struct Counted
{
    ~Counted() { ++Destroyed; }
    static inline int Destroyed = 0;
};

TEST(NodeMemory, AllocatesAlignedBlocksOfAnySize)
{
    NodeMemory memory;
    for (const std::size_t size : {1U, 8U, 5000U, 3U, 1000000U, 17U}) {
        auto* const bytes = static_cast<unsigned char*>(memory.Allocate(size));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignof(double), 0U);
        std::fill(bytes, bytes + size, static_cast<unsigned char>(size));
    }
}

TEST(NodeMemory, LargeAmountsComeInChunksOfTheirOwnKind)
{
    NodeMemory memory;
    std::vector<unsigned char*> blocks;
    for (std::size_t index = 0; index < 200; ++index) {
        blocks.push_back(static_cast<unsigned char*>(memory.Allocate(100000)));
        std::fill(blocks.back(), blocks.back() + 100000, static_cast<unsigned char>(index));
    }
    auto* const huge = static_cast<unsigned char*>(memory.Allocate(5000001));
    std::fill(huge, huge + 5000001, static_cast<unsigned char>(1));
    for (std::size_t index = 0; index < blocks.size(); ++index) {
        EXPECT_EQ(blocks[index][0], static_cast<unsigned char>(index));
        EXPECT_EQ(blocks[index][99999], static_cast<unsigned char>(index));
    }
}

TEST(NodeMemory, DestroysWhatItMadeOnce)
{
    Counted::Destroyed = 0;
    {
        NodeMemory memory;
        memory.Make<Counted>();
        memory.Make<Counted>();
        memory.Clear();
        EXPECT_EQ(Counted::Destroyed, 2);
        memory.Make<Counted>();
    }
    EXPECT_EQ(Counted::Destroyed, 3);
}

TEST(ArenaTree, ChildrenAreFoundByNameAndWalkedInOrder)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    const ArenaNode* const first = root->Add(L"b");
    const ArenaNode* const other = root->Add(L"a");
    const ArenaNode* const second = root->Add(L"b");
    const KARMPDeserializer* found = nullptr;
    root->GetElement(L"b", found);
    EXPECT_EQ(found, first);
    root->GetElement(L"b", found);
    EXPECT_EQ(found, second);
    KARMPDeserializer::ElementList elements;
    root->GetElements(elements);
    EXPECT_EQ(elements, (KARMPDeserializer::ElementList{other, first, second}));
}

TEST(ArenaTree, ManyNamesAreFoundAndFreedWithTheArena)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    // More names than the table of the process holds, and some that are too long for it.
    for (int number = 0; number < 20000; ++number) {
        const std::wstring name = L"placed" + std::to_wstring(number);
        const std::wstring name2 = name + std::wstring(60, L'x');
        root->Add(name);
        NodeBuilder::SetValue(*root->Add(name2), NodeText::Widen("0.5", memory));
        root->AddAttribute(name, name2);
    }
    for (const int number : {0, 1, 777, 19999}) {
        const std::wstring name = L"placed" + std::to_wstring(number);
        const std::wstring name2 = name + std::wstring(60, L'x');
        EXPECT_TRUE(root->HasElement(name));
        const KARMPDeserializer* child = nullptr;
        double value = 0;
        EXPECT_EQ(root->GetElement(name2, child, value), KARSuccess);
        EXPECT_EQ(value, 0.5);
        std::wstring text;
        EXPECT_EQ(root->GetAttribute(name, text), KARSuccess);
        EXPECT_EQ(text, name2);
    }
    EXPECT_FALSE(root->HasElement(L"placed20000"));
}

TEST(ArenaTree, ALaterAttributeReplacesTheEarlierOneOfItsName)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    EXPECT_TRUE(root->AddAttribute(L"name", L"first"));
    EXPECT_FALSE(root->AddAttribute(L"name", L"second"));
    std::wstring text;
    root->GetAttribute(L"name", text);
    EXPECT_EQ(text, L"second");
    EXPECT_EQ(root->GetAttributeCount(), 1U);
}

class AsciiValue : public KARMPTestFixture
{
protected:
    ArenaNode* Node(const char* text)
    {
        ArenaNode* const node = ArenaNode::Make(m_memory, L"node");
        NodeBuilder::SetValue(*node, karmp::AsciiText{text});
        EXPECT_TRUE(
            node->Attributes({{NodeText::Name(L"name", m_memory), karmp::AsciiText{text}}}));
        return node;
    }

private:
    NodeSource m_memory;
};

TEST_F(AsciiValue, IsReadAsTheKindAskedFor)
{
    double number = 0;
    EXPECT_EQ(Node("-0.125")->GetValue(number), KARSuccess);
    EXPECT_EQ(number, -0.125);
    EXPECT_EQ(Node("1,5e2")->GetAttribute(L"name", number), KARSuccess);
    EXPECT_EQ(number, 150.0);
    int integer = 0;
    EXPECT_EQ(Node("-42")->GetValue(integer), KARSuccess);
    EXPECT_EQ(integer, -42);
    bool state = false;
    EXPECT_EQ(Node("YES")->GetValue(state), KARSuccess);
    EXPECT_TRUE(state);
    EXPECT_EQ(Node("false")->GetAttribute(L"name", state), KARSuccess);
    EXPECT_FALSE(state);
    std::wstring text;
    EXPECT_EQ(Node("Crank arm")->GetValue(text), KARSuccess);
    EXPECT_EQ(text, L"Crank arm");
}

TEST_F(AsciiValue, AViewOfItLastsAndTheNumberCanStillBeRead)
{
    const ArenaNode* const node = Node("12");
    std::wstring_view first;
    std::wstring_view second;
    int number = 0;
    EXPECT_EQ(node->GetAttribute(L"name", first), KARSuccess);
    EXPECT_EQ(node->GetAttribute(L"name", second), KARSuccess);
    EXPECT_EQ(node->GetAttribute(L"name", number), KARSuccess);
    EXPECT_EQ(first, L"12");
    EXPECT_EQ(first.data(), second.data());
    EXPECT_EQ(number, 12);
}

TEST_F(AsciiValue, WhatDoesNotConvertIsReportedAsForWideText)
{
    double number = 3.0;
    int integer = 3;
    bool state = true;
    const ArenaNode* const node = Node("fast");
    EXPECT_EQ(node->GetValue(number), KARFailure);
    EXPECT_EQ(node->GetValue(integer), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(node->GetValue(state), KARFailure);
    ExpectReports(0);
    EXPECT_EQ(number, 3.0);
    EXPECT_EQ(integer, 3);
    EXPECT_TRUE(state);
}

TEST_F(AsciiValue, IsReadOnceWithoutAViewThatLasts)
{
    const std::string longText(100, 'a');
    for (const std::string& text : {std::string("id1"), longText}) {
        karmp::ReadText read;
        EXPECT_EQ(Node(text.c_str())->GetAttribute(L"name", read), KARSuccess);
        EXPECT_EQ(read.View(), std::wstring(text.begin(), text.end()));
    }
    ArenaNode* const node = Node("1");
    node->AddAttribute(L"wide", L"wide text");
    karmp::ReadText read;
    EXPECT_EQ(node->GetAttribute(L"wide", read), KARSuccess);
    EXPECT_EQ(read.View(), L"wide text");
    EXPECT_EQ(node->GetAttribute(L"missing", read), KARFailure);
    EXPECT_EQ(read.View(), L"wide text");
}

TEST_F(AsciiValue, AnEmptyOneIsAnEmptyText)
{
    std::wstring_view view = L"x";
    EXPECT_EQ(Node("")->GetValue(view), KARSuccess);
    EXPECT_TRUE(view.empty());
}

TEST(ArenaTree, ARecordThatGetsAChildOfAKnownNameIsWalkedInOrder)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    ArenaNode* const x = ArenaNode::Make(memory, L"x");
    ArenaNode* const y = ArenaNode::Make(memory, L"y");
    root->AddAll({x, y});
    const ArenaNode* const last = root->Add(L"x");
    KARMPDeserializer::ElementList elements;
    root->GetElements(elements);
    EXPECT_EQ(elements, (KARMPDeserializer::ElementList{x, last, y}));
}

TEST(ArenaTree, SiblingsOfOneNameAddedTogetherAreAllFound)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    ArenaNode* const first = ArenaNode::Make(memory, L"x");
    ArenaNode* const other = ArenaNode::Make(memory, L"a");
    ArenaNode* const second = ArenaNode::Make(memory, L"x");
    root->AddAll({first, other, second});
    KARMPDeserializer::ElementIterator begin;
    KARMPDeserializer::ElementIterator end;
    root->GetElements(L"x", begin, end);
    EXPECT_EQ(KARMPDeserializer::ElementList(begin, end),
              (KARMPDeserializer::ElementList{first, second}));
}

TEST(ArenaTree, TheListOfANameIsFreedWithTheArenaOfTheContent)
{
    // A source that allocates the content of nodes in a second arena.
    struct Source final : NodeSource
    {
        NodeMemory& ContentMemory(const KARMPDeserializer& /*node*/) override { return content; }
        NodeMemory content;
    };
    Source source;
    ArenaNode* const root = ArenaNode::Make(source, L"root");
    ArenaNode* const first = root->Add(L"a");
    root->Add(L"b");
    const std::size_t before = source.content.Size();
    KARMPDeserializer::ElementIterator begin;
    KARMPDeserializer::ElementIterator end;
    root->GetElements(L"a", begin, end);
    EXPECT_GT(source.content.Size(), before);
    ArenaNode* const second = root->Add(L"a");
    EXPECT_EQ(KARMPDeserializer::ElementList(begin, end),
              (KARMPDeserializer::ElementList{first, second}));
}

TEST(ArenaTree, OfAttributesAddedTogetherTheLastOfANameCounts)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    const NodeText name = NodeText::Name(L"name", memory);
    const NodeText other = NodeText::Name(L"other", memory);
    EXPECT_TRUE(root->Attributes({{other, karmp::AsciiText{"1"}}, {name, karmp::AsciiText{"2"}}}));
    EXPECT_FALSE(root->Attributes({{name, karmp::AsciiText{"3"}}}));
    ArenaNode* const second = ArenaNode::Make(memory, L"second");
    EXPECT_FALSE(
        second->Attributes({{name, karmp::AsciiText{"4"}}, {name, karmp::AsciiText{"5"}}}));
    int value = 0;
    root->GetAttribute(L"name", value);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(root->GetAttributeCount(), 2U);
    second->GetAttribute(L"name", value);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(second->GetAttributeCount(), 1U);
}

TEST(ArenaTree, AVersionOfAnyLengthIsAllocatedInTheArenaAndGoesDownTheTree)
{
    NodeSource memory;
    ArenaNode* const root = ArenaNode::Make(memory, L"root");
    const ArenaNode* const child = root->Add(L"child");
    const std::wstring version(6000, L'v');
    const std::size_t before = memory.Size();
    root->SetVersion(version);
    EXPECT_GT(memory.Size(), before);
    const KARMPDeserializer* found = nullptr;
    root->GetElement(L"child", found);
    EXPECT_EQ(found, child);
    EXPECT_EQ(found->Version(), version);
}

// A source whose nodes have two attributes, a value and three children, counting how often these
// are filled.
class LateSource final : public NodeSource
{
public:
    ArenaNode& Make()
    {
        ArenaNode& node = *ArenaNode::Make(*this, L"late");
        NodeBuilder::SetMissing(node, karmp::AttributesPart | karmp::ContentPart);
        return node;
    }
    static void FillAgain(ArenaNode& node)
    {
        NodeBuilder::Forget(node);
        NodeBuilder::SetMissing(node, karmp::AttributesPart | karmp::ContentPart);
    }

    int attributesFilled = 0;
    int contentFilled = 0;
    bool allocationFails = false;
    bool findsUnfilled = false;

private:
    void FillAttributes(KARMPDeserializer& node) override
    {
        ++attributesFilled;
        const karmp::ReadAttribute attributes[] = {
            {NodeText::Name(L"a", *this), karmp::AsciiText{"1"}},
            {NodeText::Name(L"b", *this), karmp::AsciiText{"x"}}};
        NodeBuilder::AddAttributes(node, attributes, *this);
    }
    void FillContent(KARMPDeserializer& node) override
    {
        ++contentFilled;
        if (allocationFails)
            throw std::bad_alloc();
        NodeBuilder::SetValue(node, karmp::AsciiText{"text"});
        KARMPDeserializer* const children[] = {ArenaNode::Make(*this, L"x"),
                                               ArenaNode::Make(*this, L"y"),
                                               ArenaNode::Make(*this, L"x")};
        NodeBuilder::AddElements(node, children, *this);
    }
    bool FindAttribute(const KARMPDeserializer& /*node*/, std::wstring_view name,
                       karmp::AsciiText& value) const override
    {
        value.characters = name == L"a" ? "7" : nullptr;
        return findsUnfilled && name != L"b";
    }
};

TEST(ArenaTree, PartsAreFilledWhenTheFirstOfThemIsRead)
{
    const KARMPDeserializer* child = nullptr;
    KARMPDeserializer::ElementList list;
    KARMPDeserializer::ElementVector vector;
    KARMPDeserializer::ElementIterator begin;
    KARMPDeserializer::ElementIterator end;
    std::wstring text;
    int number = 0;
    const auto expectFilled = [](int attributes, int content, auto ask) {
        LateSource source;
        ArenaNode& node = source.Make();
        EXPECT_EQ(source.attributesFilled + source.contentFilled, 0);
        ask(node);
        ask(node);
        EXPECT_EQ(source.attributesFilled, attributes);
        EXPECT_EQ(source.contentFilled, content);
    };
    expectFilled(
        1, 0, [](ArenaNode& node) { EXPECT_TRUE(node.HasAttribute(L"b")); });
    expectFilled(
        1, 0, [](ArenaNode& node) { EXPECT_EQ(node.GetAttributeCount(), 2U); });
    expectFilled(1, 0, [](ArenaNode& node) { EXPECT_EQ(node.GetAttributeId(1), L"b"); });
    expectFilled(1, 0, [&](ArenaNode& node) {
        EXPECT_EQ(node.GetAttribute(L"a", number), KARSuccess);
        EXPECT_EQ(number, 1);
    });
    expectFilled(
        0, 1,
        [&](ArenaNode& node) {
            EXPECT_EQ(node.GetValue(text), KARSuccess);
            EXPECT_EQ(text, L"text");
        });
    expectFilled(
        0, 1, [](ArenaNode& node) { EXPECT_TRUE(node.HasValue()); });
    expectFilled(0, 1, [](ArenaNode& node) { EXPECT_FALSE(node.HasElement(L"z")); });
    expectFilled(0, 1, [&](ArenaNode& node) {
        node.GetElement(L"y", child);
        EXPECT_NE(child, nullptr);
    });
    expectFilled(0, 1, [&](ArenaNode& node) {
        list.clear();
        node.GetElements(list);
        EXPECT_EQ(list.size(), 3U);
    });
    expectFilled(0, 1, [&](ArenaNode& node) {
        list.clear();
        node.GetOrderedElementList(list);
        EXPECT_EQ(list.size(), 3U);
    });
    expectFilled(
        0, 1,
        [&](ArenaNode& node) {
            node.GetElements(L"x", begin, end);
            EXPECT_EQ(std::distance(begin, end), 2);
        });
    expectFilled(0, 1, [](ArenaNode& node) { EXPECT_EQ(node.ElementsNamed(L"x").size(), 2U); });
    expectFilled(0, 1, [&](ArenaNode& node) {
        vector.clear();
        node.AppendElements(vector);
        EXPECT_EQ(vector.size(), 3U);
    });
    expectFilled(0, 1, [&](ArenaNode& node) {
        vector.clear();
        node.AppendOrderedElements(vector);
        EXPECT_EQ(vector.size(), 3U);
    });
}

TEST(ArenaTree, AnAttributeMayBeFoundWithoutTheOthersBeingFilled)
{
    LateSource source;
    ArenaNode& node = source.Make();
    source.findsUnfilled = true;
    int number = 0;
    std::wstring text;
    EXPECT_TRUE(node.HasAttribute(L"a"));
    EXPECT_FALSE(node.HasAttribute(L"c"));
    EXPECT_EQ(node.GetAttribute(L"a", number), KARSuccess);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(node.GetAttribute(L"c", text), KARFailure);
    EXPECT_EQ(source.attributesFilled, 0);
    // A view needs something to refer to, and "b" has to be filled.
    std::wstring_view view;
    EXPECT_EQ(node.GetAttribute(L"a", view), KARSuccess);
    EXPECT_EQ(view, L"1");
    EXPECT_EQ(source.attributesFilled, 1);
    EXPECT_EQ(node.GetAttribute(L"b", text), KARSuccess);
    EXPECT_EQ(text, L"x");
    EXPECT_EQ(source.attributesFilled, 1);
}

TEST(ArenaTree, WhatIsForgottenIsFilledAgain)
{
    LateSource source;
    ArenaNode& node = source.Make();
    EXPECT_TRUE(node.HasAttribute(L"a"));
    EXPECT_TRUE(node.HasElement(L"x"));
    EXPECT_EQ(NodeBuilder::Missing(node), 0U);
    LateSource::FillAgain(node);
    EXPECT_NE(NodeBuilder::Missing(node), 0U);
    EXPECT_EQ(node.GetAttributeCount(), 2U);
    EXPECT_TRUE(node.HasElement(L"x"));
    EXPECT_EQ(source.attributesFilled, 2);
    EXPECT_EQ(source.contentFilled, 2);
}

TEST(ArenaTree, WhatCouldNotBeAllocatedIsStillToBeFilled)
{
    LateSource source;
    ArenaNode& node = source.Make();
    source.allocationFails = true;
    EXPECT_THROW(node.HasElement(L"x"), std::bad_alloc);
    source.allocationFails = false;
    EXPECT_TRUE(node.HasElement(L"x"));
    EXPECT_EQ(source.contentFilled, 2);
}

TEST(ArenaTree, ChildrenAreNotAddedWhenAnAllocationFails)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    std::size_t failing = 1;
    for (bool failed = true; failed; ++failing) {
        NodeSource memory;
        ArenaNode* const root = ArenaNode::Make(memory, L"root");
        std::vector<KARMPDeserializer*> children;
        for (int number = 0; number < 400; ++number)
            children.push_back(ArenaNode::Make(memory, L"name" + std::to_wstring(number % 100)));
        failed = false;
        {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            try {
                root->AddAll(children);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        KARMPDeserializer::ElementList list;
        root->GetOrderedElementList(list);
        EXPECT_EQ(list.size(), failed ? 0U : 400U) << failing;
        if (failed)
            root->AddAll(children);
        EXPECT_EQ(root->ElementsNamed(L"name7").size(), 4U) << failing;
    }
    EXPECT_GT(failing, 10U);
}

TEST(ArenaTree, NodesMayBeDestroyedBeforeTheirArena)
{
    NodeSource memory;
    ArenaNode root(memory, L"root");
    for (int number = 0; number < 40; ++number)
        root.AddAttribute(L"attribute" + std::to_wstring(number), L"value");
    EXPECT_TRUE(root.HasAttribute(L"attribute39"));
}

} // namespace
