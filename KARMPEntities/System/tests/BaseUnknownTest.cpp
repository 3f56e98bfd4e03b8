#include "GMKTkCompatCtx.h"
#include "KARBaseUnknown_var.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

class Part : public KARCountedUnknown
{
public:
    explicit Part(int& alive) : m_alive(alive) { ++m_alive; }
    static const char* ClassId() { return "Part"; }
    void* Query(const char* classId) override
    {
        return KARSameClassId(classId, ClassId()) ? this : KARCountedUnknown::Query(classId);
    }

protected:
    ~Part() override { --m_alive; }

private:
    int& m_alive;
};

class Other : public KARCountedUnknown
{
public:
    static const char* ClassId() { return "Other"; }
};

// Stands for another object, as a reference to a part in an assembly does.
class Proxy : public KARCountedUnknown
{
public:
    explicit Proxy(KARBaseUnknown* target) : m_target(target) {}
    KARBaseUnknown* GetResolved(int kind) override { return kind == 0 ? m_target : this; }

private:
    KARBaseUnknown* m_target;
};

} // namespace

TEST(CountedUnknown, LivesUntilItsLastReleaseAndTellsTheCount)
{
    int alive = 0;
    Part* part = new Part(alive);
    EXPECT_EQ(part->GetRefCount(), 1U);
    EXPECT_EQ(part->AddRef(), 2U);
    EXPECT_EQ(part->Release(), 1U);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(part->Release(), 0U);
    EXPECT_EQ(alive, 0);
}

TEST(CountedUnknown, CountsRightOverThreads)
{
    int alive = 0;
    Part* part = new Part(alive);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([part] {
            for (int round = 0; round < 5000; ++round) {
                part->AddRef();
                part->Release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(part->GetRefCount(), 1U);
    part->Release();
    EXPECT_EQ(alive, 0);
}

TEST(CountedUnknown, AnswersQueriesForItsClassesWithoutCounting)
{
    int alive = 0;
    Part* part = new Part(alive);
    KARBaseUnknown* root = part;
    EXPECT_EQ(KAROmxQI<Part>(root), part);
    EXPECT_EQ(KAROmxQI(root, "Part"), static_cast<void*>(part));
    EXPECT_EQ(KAROmxQI<KARCountedUnknown>(root), part);
    EXPECT_EQ(KAROmxQI<KARBaseUnknown>(root), root);
    EXPECT_EQ(KAROmxQI<Other>(root), nullptr);
    EXPECT_EQ(KAROmxQI(root, nullptr), nullptr);
    EXPECT_EQ(KAROmxQI<Part>(nullptr), nullptr);
    EXPECT_EQ(part->GetRefCount(), 1U);
    part->Release();
}

TEST(CountedUnknown, CastsByItsDynamicType)
{
    int alive = 0;
    Part* part = new Part(alive);
    KARBaseUnknown* root = part;
    const KARBaseUnknown* constant = part;
    EXPECT_EQ(KARSysDynamicCast<Part>(root), part);
    EXPECT_EQ(KARSysDynamicCast<Part>(constant), part);
    EXPECT_EQ(KARSysDynamicCast<Other>(root), nullptr);
    root = nullptr;
    EXPECT_EQ(KARSysDynamicCast<Part>(root), nullptr);
    part->Release();
}

TEST(CountedUnknown, ResolvesToItselfUnlessItStandsForAnother)
{
    int alive = 0;
    Part* part = new Part(alive);
    Proxy* proxy = new Proxy(part);
    EXPECT_EQ(part->GetResolved(0), part);
    EXPECT_EQ(proxy->GetResolved(0), part);
    EXPECT_EQ(part->GetRefCount(), 1U);
    proxy->Release();
    part->Release();
    EXPECT_EQ(alive, 0);
}

TEST(CountedPointer, HoldsOneReference)
{
    int alive = 0;
    Part* part = new Part(alive);
    {
        KARBaseUnknown_var first(part);
        EXPECT_EQ(part->GetRefCount(), 2U);
        KARBaseUnknown_var second(first);
        EXPECT_EQ(part->GetRefCount(), 3U);
        KARBaseUnknown_var third(std::move(second));
        EXPECT_EQ(part->GetRefCount(), 3U);
        EXPECT_EQ(third, part);
        third = first;
        EXPECT_EQ(part->GetRefCount(), 3U);
        third = *&third;
        EXPECT_EQ(part->GetRefCount(), 3U);
        third = nullptr;
        EXPECT_EQ(part->GetRefCount(), 2U);
        EXPECT_EQ(first->GetResolved(0), part);
        EXPECT_EQ(&*first, part);
    }
    EXPECT_EQ(part->GetRefCount(), 1U);
    part->Release();
    EXPECT_EQ(alive, 0);
}

TEST(CountedPointer, ComparesByTheObject)
{
    int alive = 0;
    Part* part = new Part(alive);
    {
        const KARBaseUnknown_var none;
        const KARBaseUnknown_var first(part);
        const KARBaseUnknown_var same(part);
        const KARBaseUnknown* constant = part;
        EXPECT_TRUE(none == nullptr);
        EXPECT_TRUE(first != nullptr);
        EXPECT_TRUE(first == same);
        EXPECT_TRUE(first == part);
        EXPECT_TRUE(part == first);
        EXPECT_TRUE(first == constant);
        EXPECT_FALSE(first == none);
        EXPECT_TRUE(first);
        EXPECT_FALSE(none);
    }
    part->Release();
}

TEST(CountedPointer, AssignmentKeepsAnObjectThatOnlyTheFormerOneHeld)
{
    class Holder : public KARCountedUnknown
    {
    public:
        KARBaseUnknown_var held;
    };
    int alive = 0;
    KARBaseUnknown_var pointer;
    {
        Holder* holder = new Holder;
        Part* part = new Part(alive);
        holder->held = part;
        part->Release();
        pointer = holder;
        holder->Release();
    }
    pointer = static_cast<Holder*>(pointer.Get())->held;
    EXPECT_EQ(alive, 1);
    EXPECT_NE(KAROmxQI<Part>(pointer), nullptr);
    pointer = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(CompatibilityScope, NestsAndIsOfOneThread)
{
    EXPECT_EQ(GMKTkCompatCtx::Depth(), 0);
    {
        const GMKTkCompatCtx outer;
        EXPECT_EQ(GMKTkCompatCtx::Depth(), 1);
        {
            const GMKTkCompatCtx inner;
            EXPECT_EQ(GMKTkCompatCtx::Depth(), 2);
        }
        int elsewhere = -1;
        std::thread([&] { elsewhere = GMKTkCompatCtx::Depth(); }).join();
        EXPECT_EQ(elsewhere, 0);
        EXPECT_EQ(GMKTkCompatCtx::Depth(), 1);
    }
    EXPECT_EQ(GMKTkCompatCtx::Depth(), 0);
}
