// Observers that come and go, and many entities and events.
#include "AllocationCounter.h"
#include "KARMPObserver.h"
#include "WorldTesting.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

constexpr auto SinceSubscribe = KARMPObserver::SinceSubscribe;
constexpr auto SinceReset = KARMPObserver::SinceReset;

class ObserverUnderLoad : public WorldFixture
{
protected:
    ObserverUnderLoad()
    {
        world->Add(support);
        world->Add(other);
        world->Add(body);
    }
    // Has something done whenever an entity tells its subscribers, before or after the observer,
    // as it is called before or after that one subscribed.
    void OnUpdateOf(KARMPEntity& entity, std::function<void()> act)
    {
        m_acts.push_back(std::move(act));
        const std::size_t index = m_acts.size() - 1;
        QOBNotificationFunctor::Events events;
        events.set(9);
        entity.addSubscriber({*m_owner, [this, index](auto, auto) { m_acts[index](); }}, events);
    }
    std::uint64_t Modified(KARMPObserver::SinceWhen since = SinceSubscribe) const
    {
        return observer->GetModifiedEntityCount(since);
    }

    const QOBSharedHandle<KARMPSupport> support = TestOf<KARMPSupport>::create(L"support");
    const QOBSharedHandle<KARMPSupport> other = TestOf<KARMPSupport>::create(L"other");
    const QOBSharedHandle<KARMPBody> body = TestOf<KARMPBody>::create(L"body");
    QOBSharedHandle<KARMPObserver> observer = KARMPObserver::create();

private:
    std::vector<std::function<void()>> m_acts;
    const QOBSharedHandle<KARMPEntity> m_owner = TestOf<KARMPMaterial>::create(L"owner");
};

TEST_F(ObserverUnderLoad, MayDieWhileItIsBeingTold)
{
    OnUpdateOf(*support, [this] { observer = nullptr; });
    observer->Subscribe(world);
    support->NotifyUpdate();
    EXPECT_FALSE(observer);
    EXPECT_EQ(support->getSubscriberCount(), 1U);
    EXPECT_EQ(other->getSubscriberCount(), 0U);
    support->NotifyUpdate();
}

TEST_F(ObserverUnderLoad, HearsNothingMoreOnceItUnsubscribedInsideANotification)
{
    OnUpdateOf(*support, [this] { observer->Unsubscribe(); });
    observer->Subscribe(world);
    support->NotifyUpdate();
    EXPECT_EQ(Modified(), 0U);
    EXPECT_EQ(support->getSubscriberCount(), 1U);
}

TEST_F(ObserverUnderLoad, HearsTheNextEventOnceItSubscribedAgainInsideANotification)
{
    bool again = true;
    OnUpdateOf(*support, [&] {
        if (std::exchange(again, false))
            observer->Subscribe(world);
    });
    observer->Subscribe(world);
    support->NotifyUpdate();
    EXPECT_EQ(Modified(), 0U);
    EXPECT_EQ(support->getSubscriberCount(), 2U);
    support->NotifyUpdate();
    EXPECT_EQ(Modified(), 1U);
}

TEST_F(ObserverUnderLoad, ForgetsWhatItWasJustToldWhenItIsReset)
{
    observer->Subscribe(world);
    OnUpdateOf(*support, [this] { observer->Reset(); });
    support->NotifyUpdate();
    EXPECT_EQ(Modified(SinceReset), 0U);
    EXPECT_EQ(Modified(SinceSubscribe), 1U);
}

TEST_F(ObserverUnderLoad, HearsOfChangesThatAChangeCauses)
{
    OnUpdateOf(*support, [this] {
        other->NotifyUpdate();
        body->NotifyUpdate();
    });
    observer->Subscribe(world);
    support->NotifyUpdate();
    ASSERT_EQ(Modified(), 2U);
    EXPECT_EQ(observer->GetMovingBodyCount(SinceSubscribe), 1U);
    QOBSharedHandle<KARMPEntity> entity;
    observer->GetModifiedEntity(0, entity, SinceSubscribe);
    EXPECT_EQ(entity, other);
}

TEST_F(ObserverUnderLoad, MayLoseTheEntityThatIsTelling)
{
    OnUpdateOf(*support, [this] {
        auto dying = support;
        KARMPSupport::destroy(dying);
    });
    observer->Subscribe(world);
    support->NotifyUpdate();
    EXPECT_EQ(Modified(), 0U);
    other->NotifyUpdate();
    EXPECT_EQ(Modified(), 1U);
    observer->Unsubscribe();
    EXPECT_EQ(other->getSubscriberCount(), 0U);
}

TEST_F(ObserverUnderLoad, MayChangeTheWorldThatItWatchesInsideANotification)
{
    const auto secondBasicWorld = QOBBasicWorld::create(L"second");
    const auto second = KARMPWorld::create(secondBasicWorld);
    const auto elsewhere = TestOf<KARMPSupport>::create(L"elsewhere");
    second->Add(elsewhere);
    OnUpdateOf(*support, [&] { observer->Subscribe(second); });
    observer->Subscribe(world);
    support->NotifyUpdate();
    other->NotifyUpdate();
    elsewhere->NotifyUpdate();
    ASSERT_EQ(Modified(), 1U);
    QOBSharedHandle<KARMPEntity> entity;
    observer->GetModifiedEntity(0, entity, SinceSubscribe);
    EXPECT_EQ(entity, elsewhere);
}

TEST_F(ObserverUnderLoad, OutlivesAWorldThatIsTakenApart)
{
    basicWorld->addLogicalChild(support);
    observer->Subscribe(world);
    basicWorld->orphanObject();
    KARMPWorld::destroy(world);
    support->NotifyUpdate();
    EXPECT_EQ(Modified(), 0U) << "an entity that was taken apart has no subscribers";
    other->NotifyUpdate();
    EXPECT_EQ(Modified(), 1U);
    observer->Unsubscribe();
    EXPECT_EQ(other->getSubscriberCount(), 0U);
}

TEST_F(ObserverUnderLoad, SubscribesToEachEntityOnceHoweverOftenItChangesWorlds)
{
    constexpr int Entities = 2'000;
    const auto secondBasicWorld = QOBBasicWorld::create(L"second");
    const auto second = KARMPWorld::create(secondBasicWorld);
    std::vector<QOBSharedHandle<KARMPSupport>> entities;
    for (int i = 0; i < Entities; ++i) {
        entities.push_back(TestOf<KARMPSupport>::create(L""));
        (i % 2 == 0 ? world : second)->Add(entities.back());
    }
    for (int round = 0; round < 20; ++round) {
        const int watched = round % 2;
        observer->Subscribe(watched == 0 ? world : second);
        for (const auto& entity : entities)
            entity->NotifyUpdate();
        for (int i = 0; i < Entities; ++i)
            ASSERT_EQ(entities[static_cast<std::size_t>(i)]->getSubscriberCount(),
                      i % 2 == watched ? 1U : 0U);
        EXPECT_EQ(Modified(SinceReset), Entities / 2U);
        observer->Reset();
    }
    EXPECT_EQ(Modified(SinceSubscribe), static_cast<std::uint64_t>(Entities));
    observer = nullptr;
    for (const auto& entity : entities)
        ASSERT_EQ(entity->getSubscriberCount(), 0U);
}

// A world of entities of two families, an observer, and rounds of events of all of them.
class Watched
{
public:
    explicit Watched(int count)
    {
        for (int i = 0; i < count; ++i) {
            m_entities.push_back(TestOf<KARMPBody>::create(L""));
            m_world->Add(QOBSharedHandle<KARMPBody>(m_entities.back()));
            m_entities.push_back(TestOf<KARMPSupport>::create(L""));
            m_world->Add(QOBSharedHandle<KARMPSupport>(m_entities.back()));
        }
        m_observer->Subscribe(m_world);
    }
    // Every entity tells of a change; the least time of an event in several rounds, in seconds,
    // the subscription's included.
    double SecondsOfAnEvent()
    {
        using Clock = std::chrono::steady_clock;
        double least = std::numeric_limits<double>::max();
        for (int round = 0; round < 5; ++round) {
            const auto start = Clock::now();
            m_observer->Subscribe(m_world);
            m_observer->Reset();
            Tell();
            const std::chrono::duration<double> time = Clock::now() - start;
            least = std::min(least, time.count() / static_cast<double>(m_entities.size()));
        }
        return least;
    }
    void Tell() const
    {
        for (const auto& entity : m_entities)
            entity->NotifyUpdate();
    }

private:
    const QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"watched");
    const QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);
    const QOBSharedHandle<KARMPObserver> m_observer = KARMPObserver::create();
    std::vector<QOBSharedHandle<KARMPEntity>> m_entities;
};

// Work that grows with the number of entities would make an event of the larger world cost 32 times
// one of the smaller; caches alone make it up to three times.
TEST_F(ObserverUnderLoad, HearsOfAnEventAtACostThatDoesNotGrowWithTheWorld)
{
    Watched few(500);
    Watched many(16'000);
    EXPECT_LT(many.SecondsOfAnEvent(), 10.0 * few.SecondsOfAnEvent());
}

TEST_F(ObserverUnderLoad, AllocatesNothingForAnEventOfAnEntityThatItKnows)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    const Watched watched(1'000);
    watched.Tell();
    const AllocationCounter allocations;
    watched.Tell();
    EXPECT_EQ(allocations.Count(), 0U);
}

} // namespace
