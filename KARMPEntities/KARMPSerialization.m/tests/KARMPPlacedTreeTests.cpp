// Trees whose nodes, texts and lists stand in one memory.
#include "KARMPDeserializer.h"
#include "KARMPNodeMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using karmp::NodeMemory;
using karmp::NodeText;

class PlacedNode final : public KARMPDeserializer
{
public:
    PlacedNode(NodeMemory& memory, std::wstring_view name)
        : KARMPDeserializer(NodeText::Name(name, memory), NodeText::CurrentVersion()),
          m_memory(memory)
    {}
    std::wstring Location() const override { return {}; }

    static PlacedNode* Make(NodeMemory& memory, std::wstring_view name)
    {
        return ::new (memory.Allocate(sizeof(PlacedNode))) PlacedNode(memory, name);
    }
    PlacedNode* Add(std::wstring_view name)
    {
        PlacedNode* const child = Make(m_memory, name);
        KARMPDeserializer* const children[] = {child};
        PlaceElements(children, m_memory);
        return child;
    }
    bool Attribute(std::wstring_view name, std::wstring_view value)
    {
        return PlaceAttribute(NodeText::Name(name, m_memory), NodeText::Copy(value, m_memory),
                              m_memory);
    }
    using KARMPDeserializer::PlaceValue;

private:
    NodeMemory& m_memory;
};

struct Counted
{
    ~Counted() { ++Destroyed; }
    static inline int Destroyed = 0;
};

TEST(NodeMemory, GivesAlignedRoomOfAnySize)
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
    std::vector<unsigned char*> pieces;
    for (std::size_t piece = 0; piece < 200; ++piece) {
        pieces.push_back(static_cast<unsigned char*>(memory.Allocate(100000)));
        std::fill(pieces.back(), pieces.back() + 100000, static_cast<unsigned char>(piece));
    }
    auto* const huge = static_cast<unsigned char*>(memory.Allocate(5000001));
    std::fill(huge, huge + 5000001, static_cast<unsigned char>(1));
    for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
        EXPECT_EQ(pieces[piece][0], static_cast<unsigned char>(piece));
        EXPECT_EQ(pieces[piece][99999], static_cast<unsigned char>(piece));
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

TEST(PlacedTree, ChildrenAreFoundByNameAndWalkedInOrder)
{
    NodeMemory memory;
    PlacedNode* const root = PlacedNode::Make(memory, L"root");
    const PlacedNode* const first = root->Add(L"b");
    const PlacedNode* const other = root->Add(L"a");
    const PlacedNode* const second = root->Add(L"b");
    const KARMPDeserializer* found = nullptr;
    root->GetElement(L"b", found);
    EXPECT_EQ(found, first);
    root->GetElement(L"b", found);
    EXPECT_EQ(found, second);
    KARMPDeserializer::ElementList elements;
    root->GetElements(elements);
    EXPECT_EQ(elements, (KARMPDeserializer::ElementList{other, first, second}));
}

TEST(PlacedTree, ManyNamesAreFoundAndEndWithTheMemory)
{
    NodeMemory memory;
    PlacedNode* const root = PlacedNode::Make(memory, L"root");
    // More names than the table of the process holds, and some that are too long for it.
    for (int number = 0; number < 20000; ++number) {
        const std::wstring name = L"placed" + std::to_wstring(number);
        const std::wstring name2 = name + std::wstring(60, L'x');
        root->Add(name);
        root->Add(name2)->PlaceValue(NodeText::Widen("0.5", memory));
        root->Attribute(name, name2);
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

TEST(PlacedTree, ALaterAttributeTakesThePlaceOfTheEarlierOne)
{
    NodeMemory memory;
    PlacedNode* const root = PlacedNode::Make(memory, L"root");
    EXPECT_TRUE(root->Attribute(L"name", L"first"));
    EXPECT_FALSE(root->Attribute(L"name", L"second"));
    std::wstring text;
    root->GetAttribute(L"name", text);
    EXPECT_EQ(text, L"second");
    EXPECT_EQ(root->GetAttributeCount(), 1U);
}

TEST(PlacedTree, NodesMayBeDestroyedBeforeTheirMemory)
{
    NodeMemory memory;
    PlacedNode root(memory, L"root");
    for (int number = 0; number < 40; ++number) {
        root.Attribute(L"attribute" + std::to_wstring(number), L"value");
    }
    EXPECT_TRUE(root.HasAttribute(L"attribute39"));
}

} // namespace
