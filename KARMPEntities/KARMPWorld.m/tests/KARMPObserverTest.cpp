#include "KARMPObserver.h"

#include "AllocationCounter.h"
#include "QOBException.h"
#include "TestEntity.h"
#include "WorldTesting.h"

#include <algorithm>
#include <new>

namespace {

constexpr KARMPObserver::SinceWhen BothSpans[] = {KARMPObserver::SinceSubscribe,
                                                  KARMPObserver::SinceReset};

class Observer : public WorldFixture
{
protected:
    Observer()
    {
        world->Add(body);
        world->Add(support);
    }
    std::uint64_t moved(KARMPObserver::SinceWhen since = KARMPObserver::SinceSubscribe) const
    {
        return observer->GetMovingBodyCount(since);
    }
    std::uint64_t modified(KARMPObserver::SinceWhen since = KARMPObserver::SinceSubscribe) const
    {
        return observer->GetModifiedEntityCount(since);
    }

    /// An entity of each family, in their order, in the world that was emptied.
    std::vector<QOBSharedHandle<KARMPEntity>> addOneOfEach()
    {
        world->EmptyWorld();
        std::vector<QOBSharedHandle<KARMPEntity>> entities;
        karmp::Families::ForEach([&](auto family) {
            using T = typename decltype(family)::Type;
            const auto entity = TestOf<T>::create(L"entity");
            world->Add(entity);
            entities.push_back(entity);
        });
        return entities;
    }

    const QOBSharedHandle<KARMPBody> body = TestOf<KARMPBody>::create(L"body");
    const QOBSharedHandle<KARMPSupport> support = TestOf<KARMPSupport>::create(L"support");
    QOBSharedHandle<KARMPObserver> observer = KARMPObserver::create();
};

TEST_F(Observer, KnowsItsClass)
{
    EXPECT_EQ(KARMPObserver::ClassName(), "KARMPObserver");
    EXPECT_EQ(observer->getClassName(), "KARMPObserver");
    EXPECT_EQ(KARMPObserver::ClassID().getText(), "31B3C405-0400-48f4-93CF-F4D427B54123");
    EXPECT_EQ(&observer->getClassID(), &KARMPObserver::ClassID());
    EXPECT_TRUE(observer->isInstanceOf(KARMPObserver::ClassInfo()));
    EXPECT_EQ(KARMPObserver::ClassInfo().getParent(), &QOBNotificationAgent::ClassInfo());
}

TEST_F(Observer, NoticesNothingBeforeItSubscribes)
{
    body->NotifyUpdate();
    support->NotifyUpdate();
    EXPECT_EQ(moved(), 0U);
    EXPECT_EQ(modified(), 0U);
}

TEST_F(Observer, ListsMovedBodiesAndModifiedEntitiesApart)
{
    EXPECT_EQ(observer->Subscribe(world), KARSuccess);
    body->NotifyUpdate();
    support->NotifyUpdate();
    for (const auto since : BothSpans) {
        ASSERT_EQ(moved(since), 1U);
        ASSERT_EQ(modified(since), 1U);
        QOBSharedHandle<KARMPBody> movedBody;
        QOBSharedHandle<KARMPEntity> modifiedEntity;
        EXPECT_EQ(observer->GetMovingBody(0, movedBody, since), KARSuccess);
        EXPECT_EQ(observer->GetModifiedEntity(0, modifiedEntity, since), KARSuccess);
        EXPECT_EQ(movedBody, body);
        EXPECT_EQ(modifiedEntity, support);
    }
}

TEST_F(Observer, WatchesEveryFamily)
{
    const auto entities = addOneOfEach();
    EXPECT_EQ(observer->Subscribe(world), KARSuccess);
    for (const auto& entity : entities)
        entity->NotifyUpdate();
    EXPECT_EQ(moved(), 1U);
    EXPECT_EQ(modified(), 18U);
}

// A subscription that runs out of memory leaves the families in front of it subscribed.
TEST_F(Observer, SubscribesTheFamiliesInTheirOrder)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    std::size_t failures = 0;
    for (bool isDone = false; !isDone;) {
        const auto entities = addOneOfEach();
        const auto watcher = KARMPObserver::create();
        try {
            AllocationCounter allocations;
            allocations.FailAllocation(failures + 1);
            watcher->Subscribe(world);
            isDone = true;
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        EXPECT_TRUE(std::is_partitioned(entities.begin(), entities.end(), [](const auto& entity) {
            return entity->getSubscriberCount() > 0;
        })) << failures;
    }
    EXPECT_GE(failures, 19U);
}

TEST_F(Observer, ListsAnEntityOnceInEachSpan)
{
    observer->Subscribe(world);
    support->NotifyUpdate();
    support->NotifyUpdate();
    body->NotifyUpdate();
    body->NotifyUpdate();
    for (const auto since : BothSpans) {
        EXPECT_EQ(moved(since), 1U);
        EXPECT_EQ(modified(since), 1U);
    }
    observer->Reset();
    EXPECT_EQ(moved(KARMPObserver::SinceReset), 0U);
    EXPECT_EQ(modified(KARMPObserver::SinceReset), 0U);
    EXPECT_EQ(moved(), 1U);
    EXPECT_EQ(modified(), 1U);
    support->NotifyUpdate();
    body->NotifyUpdate();
    for (const auto since : BothSpans) {
        EXPECT_EQ(moved(since), 1U);
        EXPECT_EQ(modified(since), 1U);
    }
}

TEST_F(Observer, ListsEntitiesInTheOrderOfTheirFirstChange)
{
    const auto other = TestOf<KARMPMaterial>::create(L"other");
    world->Add(other);
    observer->Subscribe(world);
    support->NotifyUpdate();
    other->NotifyUpdate();
    support->NotifyUpdate();
    QOBSharedHandle<KARMPEntity> entity;
    observer->GetModifiedEntity(0, entity, KARMPObserver::SinceReset);
    EXPECT_EQ(entity, support);
    observer->GetModifiedEntity(1, entity, KARMPObserver::SinceReset);
    EXPECT_EQ(entity, other);
}

TEST_F(Observer, LooksAtUpdatesOnly)
{
    observer->Subscribe(world);
    for (std::uint64_t event = 0; event < 64; ++event)
        if (event != 9)
            support->postEvent(event);
    EXPECT_EQ(modified(), 0U);
    support->postEvent(9);
    EXPECT_EQ(modified(), 1U);
}

TEST_F(Observer, RefusesANullWorldAndHasStoppedWatching)
{
    observer->Subscribe(world);
    EXPECT_EQ(observer->Subscribe(QOBSharedHandle<KARMPWorld>()), KARFailure);
    ExpectReports(1);
    body->NotifyUpdate();
    support->NotifyUpdate();
    EXPECT_EQ(moved() + modified(), 0U);
    EXPECT_EQ(body->getSubscriberCount() + support->getSubscriberCount(), 0U);
}

TEST_F(Observer, GivesANullHandleOutsideItsLists)
{
    observer->Subscribe(world);
    body->NotifyUpdate();
    support->NotifyUpdate();
    for (const auto since : BothSpans) {
        for (const int index : {-1, 1}) {
            QOBSharedHandle<KARMPBody> movedBody = body;
            EXPECT_EQ(observer->GetMovingBody(index, movedBody, since), KARFailure);
            ExpectReports(1);
            EXPECT_FALSE(movedBody);
            QOBSharedHandle<KARMPEntity> entity = support;
            EXPECT_EQ(observer->GetModifiedEntity(index, entity, since), KARFailure);
            ExpectReports(1);
            EXPECT_FALSE(entity);
        }
    }
}

TEST_F(Observer, DoesNotWatchWhatIsAddedLater)
{
    observer->Subscribe(world);
    const auto later = TestOf<KARMPBody>::create(L"later");
    world->Add(later);
    later->NotifyUpdate();
    EXPECT_EQ(moved(), 0U);
}

TEST_F(Observer, WatchesOneEntityOfAnyClass)
{
    const auto entity = TestEntity::create(L"loose");
    EXPECT_EQ(observer->Subscribe(entity), KARSuccess);
    EXPECT_EQ(observer->Subscribe(body), KARSuccess);
    EXPECT_EQ(observer->Subscribe(QOBSharedHandle<QOBBasicEntity>(support)), KARSuccess);
    entity->NotifyUpdate();
    body->NotifyUpdate();
    support->NotifyUpdate();
    EXPECT_EQ(moved(), 1U);
    EXPECT_EQ(modified(), 2U);
    EXPECT_THROW(observer->Subscribe(QOBSharedHandle<QOBBasicEntity>(basicWorld)), QOBEInvalidCast);
}

// Only a handle of the body class itself stands for moves.
TEST_F(Observer, WatchesABodyThatIsHandedInAsAnEntityForChanges)
{
    observer->Subscribe(QOBSharedHandle<KARMPEntity>(body));
    body->NotifyUpdate();
    EXPECT_EQ(moved(), 0U);
    EXPECT_EQ(modified(), 1U);
}

TEST_F(Observer, RefusesANullEntity)
{
    EXPECT_EQ(observer->Subscribe(QOBSharedHandle<KARMPBody>()), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(observer->Subscribe(QOBSharedHandle<KARMPEntity>()), KARFailure);
    ExpectReports(1);
}

TEST_F(Observer, SubscribesABodyTwiceThatIsReachedTwice)
{
    observer->Subscribe(world);
    observer->Subscribe(body);
    EXPECT_EQ(body->getSubscriberCount(), 2U);
    body->NotifyUpdate();
    EXPECT_EQ(moved(), 1U);
    observer->UnsubscribeBodies();
    EXPECT_EQ(body->getSubscriberCount(), 0U);
}

TEST_F(Observer, UnsubscribesBodiesAndEntitiesApart)
{
    observer->Subscribe(world);
    observer->UnsubscribeBodies();
    EXPECT_EQ(body->getSubscriberCount(), 0U);
    EXPECT_EQ(support->getSubscriberCount(), 1U);
    observer->Subscribe(world);
    EXPECT_EQ(body->getSubscriberCount(), 1U);
    EXPECT_EQ(support->getSubscriberCount(), 1U);
    observer->UnsubscribeEntities();
    EXPECT_EQ(body->getSubscriberCount(), 1U);
    EXPECT_EQ(support->getSubscriberCount(), 0U);
}

TEST_F(Observer, KeepsItsListsWhenItUnsubscribesAndSubscribesAgain)
{
    observer->Subscribe(world);
    body->NotifyUpdate();
    support->NotifyUpdate();
    observer->Unsubscribe();
    EXPECT_EQ(body->getSubscriberCount(), 0U);
    for (int round = 0; round < 2; ++round) {
        for (const auto since : BothSpans) {
            EXPECT_EQ(moved(since), 1U);
            EXPECT_EQ(modified(since), 1U);
        }
        observer->Subscribe(world);
    }
}

TEST_F(Observer, LetsTheWorldGoWhenItUnsubscribes)
{
    observer->Subscribe(world);
    const auto references = world->getReferenceCount();
    observer->Unsubscribe();
    EXPECT_EQ(world->getReferenceCount(), references - 1);
}

TEST_F(Observer, UnsubscribesWhenItDies)
{
    observer->Subscribe(world);
    observer = nullptr;
    EXPECT_EQ(body->getSubscriberCount(), 0U);
    body->NotifyUpdate();
    support->NotifyUpdate();
}

TEST_F(Observer, OutlivesTheOtherHandlesOfItsWorld)
{
    observer->Subscribe(world);
    world = nullptr;
    basicWorld = nullptr;
    support->NotifyUpdate();
    EXPECT_EQ(modified(), 1U);
    observer = nullptr;
    EXPECT_EQ(support->getSubscriberCount(), 0U);
}

// Quadratic work would show here.
TEST_F(Observer, StaysFastWhenManyBodiesMove)
{
    constexpr int Bodies = 50'000;
    for (int i = 0; i < Bodies; ++i)
        world->Add(TestOf<KARMPBody>::create(L""));
    observer->Subscribe(world);
    for (int i = 0; i < world->GetBodyCount(); ++i) {
        QOBSharedHandle<KARMPBody> listed;
        world->Get(i, listed);
        listed->NotifyUpdate();
        listed->NotifyUpdate();
    }
    EXPECT_EQ(moved(), static_cast<std::uint64_t>(world->GetBodyCount()));
}

} // namespace
