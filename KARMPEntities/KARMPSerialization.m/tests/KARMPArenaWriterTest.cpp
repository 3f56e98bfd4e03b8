// Trees of writer nodes that are allocated in an arena.
#include "AllocationCounter.h"
#include "KARMPNodeMemory.h"
#include "KARMPSerializer.h"
#include "KARMPTestFixture.h"
#include "KARMPVersions.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace {

class ArenaWriterNode final : public KARMPSerializer
{
public:
    ArenaWriterNode() : KARMPSerializer(std::make_unique<karmp::NodeMemory>()) {}
    ~ArenaWriterNode() override { ++Destroyed; }
    KARStatus Render(std::wstring& /*text*/) const override { return KARFailure; }
    KARStatus Save(const char* /*path*/) const override { return KARFailure; }

    const ArenaWriterNode& Child(int index) const
    {
        return static_cast<const ArenaWriterNode&>(*GetElement(index));
    }
    using KARMPSerializer::GetAttributeId;
    using KARMPSerializer::GetAttributeValues;
    using KARMPSerializer::GetElementCount;
    using KARMPSerializer::GetId;
    using KARMPSerializer::GetValues;

    static inline int Destroyed = 0;
    bool givesChildren = true;

protected:
    KARMPSerializer* CreateChildElement() override
    {
        if (!givesChildren)
            return nullptr;
        return ::new (Memory()->Allocate(sizeof(ArenaWriterNode))) ArenaWriterNode(*Memory());
    }

private:
    explicit ArenaWriterNode(karmp::NodeMemory& memory) : KARMPSerializer(memory) {}
};

class ArenaWriter : public KARMPTestFixture
{};

struct CountedEnd
{
    ~CountedEnd() { ++Count; }
    static inline int Count = 0;
};

} // namespace

TEST(ReusedMemory, IsAllocatedFromItsStart)
{
    karmp::NodeMemory memory;
    memory.Reuse();
    void* const small = memory.Allocate(100);
    memory.Reuse();
    EXPECT_EQ(memory.Allocate(100), small);
    // Of more chunks than one, the newest one stays.
    memory.Allocate(10'000);
    void* const large = memory.Allocate(1'000'000);
    const std::size_t size = memory.Size();
    memory.Reuse();
    EXPECT_LT(memory.Size(), size);
    EXPECT_EQ(memory.Allocate(1'000'000), large);
    std::memset(large, 1, 1'000'000);
    EXPECT_NE(memory.Allocate(100), large);
}

TEST(ReusedMemory, DestroysWhatItMadeOnce)
{
    CountedEnd::Count = 0;
    {
        karmp::NodeMemory memory;
        memory.Make<CountedEnd>();
        memory.Make<CountedEnd>();
        memory.Reuse();
        EXPECT_EQ(CountedEnd::Count, 2);
        memory.Make<CountedEnd>();
    }
    EXPECT_EQ(CountedEnd::Count, 3);
}

TEST_F(ArenaWriter, KeepsNamesValuesAndAttributesOfAnyLength)
{
    const std::wstring longText(1000, L'x');
    ArenaWriterNode root;
    EXPECT_EQ(root.Version(), karmp::CurrentVersion);
    for (int number = 0; number < 100; ++number) {
        KARMPSerializer* child = nullptr;
        ASSERT_EQ(root.AddElement(longText + std::to_wstring(number), child, longText), KARSuccess);
        child->AddAttribute(L"moved", std::wstring(longText));
        child->AddAttribute(L"number" + std::to_wstring(number), L"short");
        for (int more = 0; more < 10; ++more)
            child->AddAttribute(L"more", more);
    }
    ASSERT_EQ(root.GetElementCount(), 100U);
    for (int number = 0; number < 100; ++number) {
        const ArenaWriterNode& child = root.Child(number);
        EXPECT_EQ(child.GetId(), longText + std::to_wstring(number));
        EXPECT_EQ(child.GetValues(), longText);
        EXPECT_EQ(child.GetAttributeValues(0), longText);
        EXPECT_EQ(child.GetAttributeId(1), L"number" + std::to_wstring(number));
        EXPECT_EQ(child.GetAttributeValues(1), L"short");
    }
}

TEST_F(ArenaWriter, AVersionOfAnyLengthGoesDownTheTree)
{
    const std::wstring version(500, L'v');
    ArenaWriterNode root;
    KARMPSerializer* before = nullptr;
    root.AddElement(L"Before", before);
    root.SetVersion(version);
    KARMPSerializer* after = nullptr;
    root.AddElement(L"After", after);
    KARMPSerializer* below = nullptr;
    after->AddElement(L"Below", below);
    root.SetVersion(L"");
    EXPECT_EQ(before->Version(), karmp::CurrentVersion);
    EXPECT_EQ(below->Version(), version);
}

TEST_F(ArenaWriter, NodesAreFreedWithTheRootWithoutBeingDestroyed)
{
    ArenaWriterNode::Destroyed = 0;
    {
        ArenaWriterNode root;
        KARMPSerializer* deepest = &root;
        for (int depth = 0; depth < 10000; ++depth) {
            KARMPSerializer* child = nullptr;
            deepest->AddElement(L"Level", child, L"a text that no other node shares");
            deepest = child;
        }
    }
    EXPECT_EQ(ArenaWriterNode::Destroyed, 1);
}

TEST_F(ArenaWriter, ANodeThatCannotBeCreatedFailsWithAReportAndAddsNothing)
{
    ArenaWriterNode root;
    root.givesChildren = false;
    KARMPSerializer* child = nullptr;
    EXPECT_EQ(root.AddElement(L"Child", child), KARFailure);
    EXPECT_EQ(child, nullptr);
    EXPECT_EQ(root.GetElementCount(), 0U);
    ExpectReports(1);
}

TEST_F(ArenaWriter, AnAdditionWhoseAllocationFailsAddsNothing)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    ArenaWriterNode root;
    AllocationCounter allocations;
    allocations.FailAllocation(1);
    KARMPSerializer* child = nullptr;
    EXPECT_THROW(root.AddElement(L"Child", child), std::bad_alloc);
    EXPECT_EQ(child, nullptr);
    EXPECT_EQ(root.GetElementCount(), 0U);
}
