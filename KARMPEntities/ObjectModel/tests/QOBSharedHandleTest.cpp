#include "AllocationCounter.h"
#include "KARReferenceCount.h"
#include "ObjectModelTestClasses.h"
#include "QOBException.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

class NeverDefined;

namespace {

TEST(SharedHandle, HasTheSizeOfAPointer)
{
    EXPECT_EQ(sizeof(QOBSharedHandle<Link>), sizeof(void*));
}

TEST(SharedHandle, OfAnIncompleteTypeCanBeCopiedStoredAndDestroyed)
{
    const QOBSharedHandle<Link> object(new Link);
    {
        auto handle = QOBSharedHandle<NeverDefined>::unchecked(object);
        std::vector<QOBSharedHandle<NeverDefined>> stored(3, handle);
        handle = nullptr;
        stored.push_back(stored.front());
        EXPECT_EQ(object->getReferenceCount(), 5U);
    }
    EXPECT_EQ(object->getReferenceCount(), 1U);
}

TEST(SharedHandle, FreesTheReferentWithTheLastReference)
{
    const int before = Link::s_living;
    QOBSharedHandle<Link> first(new Link);
    QOBSharedHandle<Link> second(first, QOBSharedBase::WriteLock);
    first.detach();
    EXPECT_EQ(Link::s_living, before + 1);
    second = static_cast<const Link*>(nullptr);
    EXPECT_EQ(Link::s_living, before);
}

TEST(SharedHandle, TakesOverAndGivesUpAReferenceThatIsCounted)
{
    const int before = Link::s_living;
    auto* const object = new Link;
    object->addFirstReference();
    EXPECT_EQ(object->getReferenceCount(), 1U);
    object->addFirstReference();
    EXPECT_EQ(object->getReferenceCount(), 2U);
    object->removeReference();
    {
        QOBSharedBase handle = QOBSharedBase::adopt(object);
        EXPECT_EQ(object->getReferenceCount(), 1U);
        EXPECT_EQ(handle.release(), object);
        EXPECT_FALSE(handle);
        EXPECT_EQ(object->getReferenceCount(), 1U);
        handle = QOBSharedBase::adopt(object);
    }
    EXPECT_EQ(Link::s_living, before);
    EXPECT_FALSE(QOBSharedBase::adopt(nullptr));
    EXPECT_EQ(QOBSharedBase().release(), nullptr);
}

TEST(SharedHandle, FromANullPointerIsNull)
{
    const QOBSharedHandle<Link> handle(static_cast<const QOBSharedObject*>(nullptr),
                                       QOBSharedBase::ReadLock);
    EXPECT_FALSE(handle);
    EXPECT_EQ(handle._getReferent(), nullptr);
    EXPECT_FALSE(handle.isDerivedFrom(QOBSharedObject::ClassInfo()));
}

TEST(SharedHandle, AssignedToItselfKeepsItsReferent)
{
    QOBSharedHandle<Link> handle(new Link);
    const QOBSharedHandle<Link>& same = handle;
    handle = same;
    EXPECT_EQ(handle->getReferenceCount(), 1U);
}

TEST(SharedHandle, ConvertsToABaseWithoutACast)
{
    const QOBSharedHandle<DerivedLink> derived(new DerivedLink);
    const QOBSharedHandle<Link> base = derived;
    EXPECT_EQ(base, derived);
    static_assert(std::is_convertible_v<QOBSharedHandle<DerivedLink>, QOBSharedHandle<Link>>);
    static_assert(!std::is_convertible_v<QOBSharedHandle<Link>, QOBSharedHandle<DerivedLink>>);
}

TEST(SharedHandle, NarrowsToTheTypeThatTheReferentHas)
{
    const QOBSharedHandle<Link> base(new DerivedLink);
    const QOBSharedHandle<DerivedLink> derived(base, QOBSharedBase::NoLock);
    EXPECT_EQ(derived, base);
}

TEST(SharedHandle, CastToAnUnrelatedTypeThrowsWithItsMessageAndLine)
{
    const QOBSharedHandle<Link> link(new Link);
    try {
        const QOBSharedHandle<Unrelated> wrong(link);
        FAIL() << "no exception";
    } catch (const QOBEInvalidCast& exception) {
        EXPECT_EQ(exception.getMessage(),
                  L"The source and target handles have incompatible referent types");
        EXPECT_STREQ(exception.what(),
                     "The source and target handles have incompatible referent types");
        EXPECT_EQ(exception.getLine(), 140);
        EXPECT_EQ(exception.getPath(), "QOBSharedHandle.h");
    }
    EXPECT_EQ(link->getReferenceCount(), 1U);
}

TEST(SharedHandle, CastFromARawPointerOfAnotherTypeThrows)
{
    const QOBSharedHandle<Link> link(new Link);
    const QOBSharedObject* object = link.get();
    EXPECT_THROW(QOBSharedHandle<Unrelated>{object}, QOBERuntimeError);
    EXPECT_NO_THROW(QOBSharedHandle<Link>{object});
}

TEST(SharedHandle, CastFromANullHandleGivesANullHandle)
{
    const QOBSharedHandle<Link> null;
    EXPECT_FALSE(QOBSharedHandle<Unrelated>(null));
}

TEST(SharedHandle, FailedAssignmentKeepsTheFormerReferent)
{
    QOBSharedHandle<Unrelated> handle(new Unrelated);
    const QOBSharedObject* former = handle.get();
    const QOBSharedHandle<Link> link(new Link);
    EXPECT_THROW(handle = QOBSharedHandle<Unrelated>(link), QOBEInvalidCast);
    EXPECT_EQ(handle.get(), former);
}

TEST(SharedHandle, AnswersForTheClassOfItsReferent)
{
    const QOBSharedHandle<QOBBasicWorld> world = QOBBasicWorld::create(L"world");
    EXPECT_TRUE(world.isDerivedFrom(QOBBasicEntity::ClassInfo()));
    EXPECT_FALSE(world.isInstanceOf(QOBBasicEntity::ClassInfo()));
    EXPECT_EQ(world.getClassInfo().getName(), "QOBBasicWorld");
}

TEST(SharedHandle, EightThreadsCopyAndDropHandlesOnOneObject)
{
    const int before = Link::s_living;
    {
        const QOBSharedHandle<Link> shared(new Link);
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&shared] {
                for (int n = 0; n < 20000; ++n) {
                    QOBSharedHandle<Link> copy = shared;
                    const QOBSharedHandle<QOBSharedObject> base = copy;
                    copy.detach();
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(shared->getReferenceCount(), 1U);
    }
    EXPECT_EQ(Link::s_living, before);
}

TEST(ReferenceCount, IsAtomicWhereverThereIsASecondThread)
{
    bool isSingle = true;
    std::thread([&isSingle] { isSingle = kar::IsSingleThreaded(); }).join();
    EXPECT_FALSE(isSingle);
}

TEST(ReferenceCount, GivesWhatItWasBefore)
{
    std::atomic<std::uint32_t> count{7};
    EXPECT_EQ(kar::Add(count, 1, std::memory_order_relaxed), 7U);
    EXPECT_EQ(kar::Add(count, 0U - 1U, std::memory_order_relaxed), 8U);
    EXPECT_EQ(count.load(), 7U);
}

QOBSharedHandle<Link> ChainOf(int length)
{
    QOBSharedHandle<Link> head;
    for (int i = 0; i < length; ++i) {
        QOBSharedHandle<Link> link(new Link);
        link->next = std::move(head);
        head = std::move(link);
    }
    return head;
}

TEST(SharedHandle, ALongChainIsFreedWithoutOverflowingTheStack)
{
    const int before = Link::s_living;
    ChainOf(1'000'000).detach();
    EXPECT_EQ(Link::s_living, before);
}

// The address sanitizer sees what is wrong here: a static handle dies after all thread storage.
TEST(SharedHandle, ALongChainMayBeHeldByAStaticHandle)
{
    static QOBSharedHandle<Link> kept;
    kept = ChainOf(1000);
    const int before = Link::s_living;
    ChainOf(1000).detach();
    EXPECT_EQ(Link::s_living, before);
}

TEST(SharedHandle, ALongChainIsFreedThoughMemoryEnds)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot let an allocation fail";
    const int before = Link::s_living;
    QOBSharedHandle<Link> head = ChainOf(1000);
    AllocationCounter allocations;
    allocations.FailAllocation(1);
    head.detach();
    EXPECT_EQ(Link::s_living, before);
    EXPECT_GT(allocations.Count(), 0U);
}

TEST(ClassInfo, HoldsThePlainNameSizeAndParent)
{
    const QOBClassInfo& info = QOBBasicEntity::ClassInfo();
    EXPECT_EQ(info.getName(), "QOBBasicEntity");
    EXPECT_EQ(info.getSize(), sizeof(QOBBasicEntity));
    EXPECT_EQ(info.getParent(), &QOBExtendibleObject::ClassInfo());
}

TEST(ClassInfo, IsDerivedFromItselfAndItsAncestorsOnly)
{
    const QOBClassInfo& info = QOBBasicEntity::ClassInfo();
    EXPECT_TRUE(info.isDerivedFrom(info));
    EXPECT_TRUE(info.isDerivedFrom(QOBDynamicObject::ClassInfo()));
    EXPECT_FALSE(info.isDerivedFrom(QOBBasicWorld::ClassInfo()));
    EXPECT_TRUE(info.isInstanceOf(info));
    EXPECT_FALSE(info.isInstanceOf(QOBDynamicObject::ClassInfo()));
    EXPECT_FALSE(info == QOBDynamicObject::ClassInfo());
}

TEST(ClassInfo, AnswersForASecondParentToo)
{
    const QOBClassInfo info(typeid(Link*), sizeof(Link), nullptr, &QOBSharedObject::ClassInfo(),
                            &QOBBasicWorld::ClassInfo());
    EXPECT_EQ(info.getName(), "Link");
    EXPECT_TRUE(info.isDerivedFrom(QOBBasicEntity::ClassInfo()));
    EXPECT_TRUE(info.isDerivedFrom(QOBSharedObject::ClassInfo()));
}

TEST(Uuid, KeepsItsTextAndComparesWithoutLetterCase)
{
    const QOBUUID mixed("176BF2B8-53E8-403b-99E3-38D09FEA994B");
    EXPECT_EQ(mixed.getText(), "176BF2B8-53E8-403b-99E3-38D09FEA994B");
    EXPECT_TRUE(mixed == QOBUUID("176bf2b8-53e8-403B-99e3-38d09fea994b"));
    EXPECT_FALSE(mixed == QOBUUID("176BF2B8-53E8-403b-99E3-38D09FEA994C"));
    EXPECT_FALSE(mixed == QOBUUID(""));
}

TEST(DynamicObject, WithoutOperationsIsNeitherReplicatedNorDuplicated)
{
    const QOBSharedHandle<Link> link(new Link);
    EXPECT_EQ(link->replicateObject(), nullptr);
    EXPECT_EQ(link->duplicateObject(QOBDynamicObject::CopyDefault), nullptr);
    EXPECT_EQ(link->getClassID().getText(), "");
    EXPECT_EQ(link->getClassName(), "QOBSharedObject");
}

// An object of some size, which may fail to be made.
template <std::size_t Size>
class Sized : public Link
{
public:
    explicit Sized(bool fails = false) : m_content{}
    {
        if (fails)
            throw std::runtime_error("not made");
    }

private:
    std::array<char, Size> m_content;
};

template <std::size_t Size>
void MakeAndFree()
{
    const int before = Link::s_living;
    EXPECT_THROW(new Sized<Size>(true), std::runtime_error);
    QOBSharedHandle<Link> head;
    for (int count = 0; count < 200; ++count) {
        const QOBSharedHandle<Link> link(new Sized<Size>);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(link.get()) % alignof(std::max_align_t), 0U);
        link->next = std::move(head);
        head = link;
    }
    std::thread([&head] { head.detach(); }).join();
    EXPECT_EQ(Link::s_living, before);
}

TEST(DynamicObject, MayHaveAnySizeAndBeFreedInAnotherThread)
{
    MakeAndFree<1>();
    MakeAndFree<100>();
    MakeAndFree<1'000>();
    MakeAndFree<10'000>();
}

TEST(DynamicObject, ComesFromAHeapThatIsSeldomAsked)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    const AllocationCounter allocations;
    const QOBSharedHandle<Link> head = ChainOf(1'000);
    // A sanitizer wants to see each of them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    EXPECT_EQ(allocations.Count(), 1'000U);
#else
    EXPECT_GT(allocations.Count(), 0U);
    EXPECT_LT(allocations.Count(), 50U);
#endif
}

} // namespace
