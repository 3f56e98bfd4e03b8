// What the nodes of the reader allocate, and how a tree is freed.
#include "AllocationCounter.h"
#include "KARMPDeserializer.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

// A node that records its name when it is destroyed.
class NotingReader : public TestDeserializer
{
public:
    NotingReader(std::wstring_view name, std::vector<std::wstring>& dead)
        : TestDeserializer(name), m_dead(dead)
    {}
    ~NotingReader() override { m_dead.emplace_back(Id()); }

private:
    std::vector<std::wstring>& m_dead;
};

} // namespace

class DeserializerMemory : public KARMPTestFixture
{
protected:
    using Node = const KARMPDeserializer*;
    using Names = std::vector<std::wstring>;
};

TEST_F(DeserializerMemory, LookingSomethingUpTakesNoMemory)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    TestDeserializer node;
    node.Attribute(L"a long name of an attribute", L"0,5");
    for (int index = 0; index < 100; ++index)
        node.Leaf(L"a long name of an element, number " + std::to_wstring(index), 1.0);
    AllocationCounter allocations;
    double number = 0.0;
    Node child = nullptr;
    EXPECT_EQ(node.GetAttribute(L"a long name of an attribute", number), KARSuccess);
    EXPECT_EQ(node.GetElement(L"a long name of an element, number 77", child, number), KARSuccess);
    EXPECT_FALSE(node.HasElement(L"a long name of no element"));
    EXPECT_EQ(allocations.Count(), 0U);
}

TEST_F(DeserializerMemory, ANodeIsSmall)
{
    EXPECT_LE(sizeof(KARMPDeserializer), 64U);
}

TEST_F(DeserializerMemory, EveryNodeOfATreeIsFreedOnce)
{
    const std::size_t before = TestDeserializer::Alive();
    {
        TestDeserializer node;
        for (int index = 0; index < 10; ++index) {
            TestDeserializer& child = node.Add(index % 2 == 0 ? L"Even" : L"Odd");
            child.Leaf(L"x", 1).Leaf(L"y", 2).Leaf(L"x", 3);
        }
        EXPECT_EQ(TestDeserializer::Alive(), before + 41);
    }
    EXPECT_EQ(TestDeserializer::Alive(), before);
}

TEST_F(DeserializerMemory, ADeepTreeDoesNotExhaustTheStack)
{
    const std::size_t before = TestDeserializer::Alive();
    {
        TestDeserializer root;
        TestDeserializer* deepest = &root;
        for (int depth = 0; depth < 1000000; ++depth)
            deepest = &deepest->Add(L"Level");
        EXPECT_EQ(TestDeserializer::Alive(), before + 1000001);
    }
    EXPECT_EQ(TestDeserializer::Alive(), before);
}

TEST_F(DeserializerMemory, AnAdditionWhoseAllocationFailsChangesNothing)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    constexpr int Filled = 16;
    for (std::size_t failing = 1;; ++failing) {
        TestDeserializer node;
        for (int index = 0; index < Filled; ++index) {
            node.Leaf(L"name" + std::to_wstring(index), index);
            node.Attribute(L"name" + std::to_wstring(index), index);
        }
        auto child = std::make_unique<TestDeserializer>();
        const std::wstring name(100, L'n');
        bool failed = false;
        {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            try {
                node.AddAttributeValue(name, 1);
                node.AddElement(name, child.get());
                (void)child.release();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        }
        EXPECT_EQ(node.HasElement(name), !failed);
        KARMPDeserializer::ElementVector elements;
        node.AppendOrderedElements(elements);
        EXPECT_EQ(elements.size(), Filled + (failed ? 0U : 1U));
        for (int index = 0; index < Filled; ++index) {
            EXPECT_TRUE(node.HasElement(L"name" + std::to_wstring(index)));
            EXPECT_TRUE(node.HasAttribute(L"name" + std::to_wstring(index)));
        }
        if (!failed) {
            EXPECT_GT(failing, 4U);
            break;
        }
    }
}

TEST_F(DeserializerMemory, ChildrenAreDestroyedByNameAndASubtreeBeforeTheNextChild)
{
    Names dead;
    {
        NotingReader root(L"root", dead);
        const auto add = [&dead](TestDeserializer& node, std::wstring_view name,
                                 const wchar_t* id) -> TestDeserializer& {
            auto* const child = new NotingReader(id, dead);
            node.AddElement(name, child);
            return *child;
        };
        TestDeserializer& second = add(root, L"b", L"b1");
        TestDeserializer& first = add(root, L"a", L"a1");
        add(root, L"b", L"b2");
        add(second, L"y", L"b1y");
        add(second, L"x", L"b1x");
        add(first, L"x", L"a1x");
    }
    EXPECT_EQ(dead, (Names{L"root", L"a1", L"a1x", L"b1", L"b1x", L"b1y", L"b2"}));
}
